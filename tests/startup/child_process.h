// A program started by a test with extra environment variables, its standard output and error on
// a pseudo-terminal (so it prints line by line, as in a terminal) and its standard input on a
// pipe the test writes to. Output is collected as it comes; waits poll it against a deadline.
#ifndef SCOPE_TESTS_STARTUP_CHILD_PROCESS_H
#define SCOPE_TESTS_STARTUP_CHILD_PROCESS_H

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

extern char** environ;

class ChildProcess {
 public:
  ChildProcess() = default;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { stop(); }

  // Starts `path` with `args`, the test's environment plus `env`. False with `error` set.
  bool start(const std::string& path, const std::vector<std::string>& args,
             const std::map<std::string, std::string>& env, std::string* error) {
    int slave = -1;
    if (openpty(&master_, &slave, nullptr, nullptr, nullptr) != 0) {
      *error = std::string("openpty: ") + strerror(errno);
      return false;
    }
    struct termios raw;
    tcgetattr(slave, &raw);
    cfmakeraw(&raw);  // no "\r\n" for "\n", no echo
    tcsetattr(slave, TCSANOW, &raw);
    fcntl(master_, F_SETFD, FD_CLOEXEC);  // not inherited by the next program started
    int in[2];
    if (pipe2(in, O_CLOEXEC) != 0) {
      *error = std::string("pipe: ") + strerror(errno);
      close(slave);
      return false;
    }
    input_ = in[1];

    std::vector<std::string> env_text;
    for (char** e = environ; *e != nullptr; ++e) {
      const std::string entry(*e);
      if (env.count(entry.substr(0, entry.find('='))) == 0) env_text.push_back(entry);
    }
    for (const auto& [name, value] : env)
      env_text.push_back(name + "=" + value);
    std::vector<char*> envp;
    for (std::string& s : env_text)
      envp.push_back(s.data());
    envp.push_back(nullptr);
    std::vector<std::string> argv_text{path};
    argv_text.insert(argv_text.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& s : argv_text)
      argv.push_back(s.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, slave, 1);
    posix_spawn_file_actions_adddup2(&actions, slave, 2);
    posix_spawn_file_actions_addclose(&actions, in[1]);
    posix_spawn_file_actions_addclose(&actions, master_);
    const int rc = posix_spawn(&pid_, path.c_str(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(slave);
    if (rc != 0) {
      *error = "cannot start " + path + ": " + strerror(rc);
      pid_ = -1;
      return false;
    }
    fcntl(master_, F_SETFL, O_NONBLOCK);
    return true;
  }

  // Writes a line to the program's standard input.
  void send_line(const std::string& line) {
    const std::string text = line + "\n";
    (void)!write(input_, text.data(), text.size());
  }

  // Collects output until `done(output)` holds, the program has ended and said all, or the
  // deadline passes. Returns whether `done` held.
  bool wait_until(const std::function<bool(const std::string&)>& done,
                  std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
      if (done(output_)) return true;
      if (!read_some(50) && !running()) return done(output_);
      if (std::chrono::steady_clock::now() > deadline) return false;
    }
  }
  bool wait_for(const std::string& text, std::chrono::milliseconds timeout) {
    return wait_until([&](const std::string& out) { return out.find(text) != std::string::npos; },
                      timeout);
  }

  bool running() {
    if (pid_ < 0) return false;
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      exit_status_ = status;
      return false;
    }
    return true;
  }

  // SIGTERM, then the remaining output is collected.
  void stop() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      int status = 0;
      waitpid(pid_, &status, 0);
      exit_status_ = status;
      pid_ = -1;
    }
    while (master_ >= 0 && read_some(0)) {
    }
    if (input_ >= 0) close(input_);
    if (master_ >= 0) close(master_);
    input_ = master_ = -1;
  }

  const std::string& output() const { return output_; }

 private:
  // Reads what is there, waiting up to `ms` for something; false when nothing came.
  bool read_some(int ms) {
    struct pollfd pfd = {master_, POLLIN, 0};
    if (poll(&pfd, 1, ms) <= 0) return false;
    char buffer[4096];
    const ssize_t n = read(master_, buffer, sizeof buffer);
    if (n <= 0) return false;  // EIO once the program has closed the terminal
    output_.append(buffer, static_cast<size_t>(n));
    return true;
  }

  pid_t pid_ = -1;
  int master_ = -1;
  int input_ = -1;
  int exit_status_ = 0;
  std::string output_;
};

#endif  // SCOPE_TESTS_STARTUP_CHILD_PROCESS_H
