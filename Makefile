# Thin targets over the bootstrap script and the CMake presets. `make help` lists them.
.PHONY: help demo test debug asan tsan coverage bench format clean

help:
	@echo "make demo      build, make a small assembly and check it"
	@echo "make test      build and run the tests"
	@echo "make asan      the tests under AddressSanitizer and UndefinedBehaviorSanitizer"
	@echo "make tsan      the tests under ThreadSanitizer"
	@echo "make oracle    the tests, with exact arithmetic as a further judge"
	@echo "make coverage  the tests, and what they reach"
	@echo "make bench     build and run the benchmarks"
	@echo "make format    format all sources"
	@echo "make clean     remove all builds"

demo:
	@scripts/bootstrap build
	@scripts/build release
	@scripts/demo build/release/bin

test:
	@scripts/bootstrap build
	@scripts/build release
	ctest --preset release

asan:
	@scripts/bootstrap build check
	@scripts/build asan-ubsan
	ctest --preset asan-ubsan

tsan:
	@scripts/bootstrap build
	@scripts/build tsan
	ctest --preset tsan

oracle:
	@scripts/bootstrap build oracle
	@scripts/build release
	ctest --preset release

coverage:
	@scripts/bootstrap build coverage
	@scripts/build coverage
	ctest --preset coverage
	gcovr --root . --filter engine/ --filter tools/ build/coverage

bench:
	@scripts/bootstrap build bench
	@scripts/build bench
	@scripts/bench build/bench/bin

format:
	@scripts/bootstrap check
	git ls-files '*.h' '*.cpp' | xargs clang-format-14 -i

clean:
	rm -rf build
