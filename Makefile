# Thin targets over the bootstrap script and the CMake presets. `make help` lists them.
.PHONY: help demo test stress asan tsan coverage bench peers fuzz reference format clean

help:
	@echo "make demo      build, make a small assembly and check it"
	@echo "make test      build and run the tests"
	@echo "make stress    the random tests of all filters against the plain rules, for longer: ROUNDS=50 times as many"
	@echo "make asan      the tests under AddressSanitizer and UndefinedBehaviorSanitizer"
	@echo "make tsan      the tests under ThreadSanitizer"
	@echo "make coverage  the tests, and what they reach"
	@echo "make bench     build and run the benchmarks"
	@echo "make peers     the same beside FCL, and answers beside exact arithmetic"
	@echo "make fuzz      feed the readers with damaged files, SECONDS=60 for each"
	@echo "make reference build/reference/html, from the public headers; fails where one is not described"
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

stress:
	@scripts/bootstrap build
	@scripts/build release tarn_detect_tests
	TARN_STRESS=$(or $(ROUNDS),50) build/release/bin/tarn_detect_tests \
	    --gtest_filter='Filters.*:HierarchyTraversal.Finds*:ProximitySearch.FindsWhat*'

asan:
	@scripts/bootstrap build check
	@scripts/build asan-ubsan
	ctest --preset asan-ubsan

tsan:
	@scripts/bootstrap build
	@scripts/build tsan
	ctest --preset tsan

coverage:
	@scripts/bootstrap build coverage
	@scripts/build coverage
	ctest --preset coverage
	gcovr --root . --filter engine/ --filter facade/ --filter tools/ build/coverage

bench:
	@scripts/bootstrap build bench
	@scripts/build bench
	@scripts/bench build/bench/bin

# The benchmarks again, with FCL and exact arithmetic beside us.
peers:
	@scripts/bootstrap build bench peers
	@cmake --preset bench >/dev/null
	@scripts/build bench
	build/bench/bin/bench_peers --benchmark_repetitions=3 --benchmark_enable_random_interleaving=true \
	    --benchmark_report_aggregates_only=true
	build/bench/bin/compare_assemblies

fuzz:
	@scripts/bootstrap build check
	@scripts/fuzz $(or $(SECONDS),60)

reference:
	@scripts/bootstrap docs
	@mkdir -p build
	doxygen docs/Doxyfile

format:
	@scripts/bootstrap check
	git ls-files '*.h' '*.cpp' | xargs clang-format-14 -i

clean:
	rm -rf build
