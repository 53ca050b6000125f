# The two commands of the README:
#   make run   builds and starts the scope UI with the device simulator
#   make test  builds and runs every test (desktop, sanitizers, fuzzing)
# and: make bench (benchmarks), make soak (the long soak run), make format.
.PHONY: run test bench soak format

run:
	@scripts/run.sh

test:
	@scripts/test.sh

bench:
	@scripts/bench.sh

# Ten rounds of tools/soak/scenario.txt (over two simulated hours on the test clock, about a
# minute of real time); SOAK_ROUNDS=N for another length. The UI's lines go to build/dev/soak.log.
soak:
	@scripts/deps.sh
	@cmake --preset dev >/dev/null && cmake --build --preset dev -j2 --target soak
	@build/dev/tools/soak/soak --rounds $${SOAK_ROUNDS:-10} --log build/dev/soak.log

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i
