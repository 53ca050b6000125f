# The two commands of the README:
#   make run   builds and starts the scope UI with the device simulator
#   make test  builds and runs every test (desktop, sanitizers, fuzzing)
.PHONY: run test bench format

run:
	@scripts/run.sh

test:
	@scripts/test.sh

bench:
	@scripts/bench.sh

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i
