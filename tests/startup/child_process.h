// A program started by a test: the test's environment plus variables of its own, standard input
// on a pipe the test writes to, standard output and error into a log file the test reads as it
// grows (both programs print line by line). Waits poll the log against a deadline.
#ifndef SCOPE_TESTS_STARTUP_CHILD_PROCESS_H
#define SCOPE_TESTS_STARTUP_CHILD_PROCESS_H

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

class ChildProcess {
 public:
  ~ChildProcess() { stop(); }

  // Starts `path` with `args`; `env` ("NAME=value") takes precedence over the test's own.
  bool start(const std::string& path, std::vector<std::string> args, std::vector<std::string> env,
             const std::string& log) {
    int in[2];
    if (pipe2(in, O_CLOEXEC) != 0) return false;
    input_ = in[1];
    log_ = log;
    for (char** e = environ; *e != nullptr; ++e)  // getenv takes the first entry of a name
      env.emplace_back(*e);
    args.insert(args.begin(), path);
    std::vector<char*> argv, envp;
    for (std::string& s : args)
      argv.push_back(s.data());
    for (std::string& s : env)
      envp.push_back(s.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    const int rc = posix_spawn(&pid_, path.c_str(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    if (rc != 0) pid_ = -1;
    return rc == 0;
  }

  void send_line(const std::string& line) {
    const std::string text = line + "\n";
    (void)!write(input_, text.data(), text.size());
  }

  // Polls the output until `done(output)` holds (true), or the program has ended or the deadline
  // passed without it (false).
  bool wait_until(const std::function<bool(const std::string&)>& done,
                  std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;; std::this_thread::sleep_for(std::chrono::milliseconds(20))) {
      if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) != 0) pid_ = -1;  // ended (and reaped)
      if (done(output())) return true;
      if (pid_ < 0 || std::chrono::steady_clock::now() > deadline) return false;
    }
  }
  bool wait_for(const std::string& text, std::chrono::milliseconds timeout) {
    return wait_until([&](const std::string& out) { return out.find(text) != std::string::npos; },
                      timeout);
  }

  // True once the program has ended.
  bool ended() {
    if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) != 0) pid_ = -1;
    return pid_ < 0;
  }

  std::string output() const {
    std::stringstream text;
    text << std::ifstream(log_).rdbuf();
    return text.str();
  }

  void stop() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      waitpid(pid_, nullptr, 0);
    }
    if (input_ >= 0) close(input_);
    pid_ = input_ = -1;
  }

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  std::string log_;
};

#endif  // SCOPE_TESTS_STARTUP_CHILD_PROCESS_H
