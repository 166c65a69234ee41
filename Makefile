# Everyday jobs, each one command. CMake does the building; this file only drives it and makes
# sure that the Debian packages a job needs are there (installing them when run as root).

JOBS       ?= 2
PREFIX     ?= /usr/local
BUILD      ?= build/release
BUILD_TEST ?= build/test
BUILD_BENCH?= build/bench
BUILD_TSAN ?= build/tsan
BUILD_FUZZ ?= build/fuzz
BUILD_COV  ?= build/coverage
FUZZ_SECONDS ?= 60
FUZZ_RUNS  ?= 1000
# make bench: measured runs per case, and the document sizes in MB (small, main, big).
BENCH_RUNS ?= 5
BENCH_SIZES?= 10 100 200

BASE_PKGS  := cmake g++ make pkg-config
TEST_PKGS  := libgtest-dev
BENCH_PKGS := libbenchmark-dev libexpat1-dev libxml2-dev libpugixml-dev libtinyxml2-dev gnuplot-nox
FUZZ_PKGS  := clang libclang-rt-14-dev
COV_PKGS   := gcovr

# Installs the named Debian packages that are missing, or says which to install.
define need
	@missing=""; for p in $(1); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "Installing:$$missing"; \
	    (apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing) || \
	      { echo "could not install:$$missing"; exit 1; }; \
	  else echo "Please install these Debian packages: sudo apt-get install$$missing"; exit 1; fi; \
	fi
endef

# cmake --build runs make inside make: no "Entering directory" lines.
MAKEFLAGS += --no-print-directory

.PHONY: all build test coverage demo bench fuzz fuzz-build fuzz-smoke tsan install clean deps

all: build

build:
	$(call need,$(BASE_PKGS))
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DZARNXML_TESTS=OFF
	cmake --build $(BUILD) -j$(JOBS)

# Debug build with AddressSanitizer and UndefinedBehaviorSanitizer, then every test.
test:
	$(call need,$(BASE_PKGS) $(TEST_PKGS))
	cmake -S . -B $(BUILD_TEST) -DCMAKE_BUILD_TYPE=Debug -DZARNXML_SANITIZE=ON -DZARNXML_TESTS=ON
	cmake --build $(BUILD_TEST) -j$(JOBS)
	cd $(BUILD_TEST) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j$(JOBS)

# Debug build with gcov instrumentation, the tests of make test, then line and branch coverage
# of src/ and tools/: a table here, an HTML report in $(BUILD_COV)/html/, and the public
# functions that no test runs.
coverage:
	$(call need,$(BASE_PKGS) $(TEST_PKGS) $(COV_PKGS))
	cmake -S . -B $(BUILD_COV) -DCMAKE_BUILD_TYPE=Debug -DZARNXML_COVERAGE=ON -DZARNXML_TESTS=ON
	cmake --build $(BUILD_COV) -j$(JOBS)
	find $(BUILD_COV) -name '*.gcda' -delete
	cd $(BUILD_COV) && ctest --output-on-failure -j$(JOBS)
	@mkdir -p $(BUILD_COV)/html
	gcovr -r . --object-directory $(BUILD_COV) -f src/ -f tools/ -j$(JOBS) \
	  --exclude-throw-branches --exclude-unreachable-branches \
	  --exclude-lines-by-pattern '.*ZARN_FRONTERA\(.*' \
	  --json $(BUILD_COV)/cobertura.json --html-details $(BUILD_COV)/html/index.html
	@python3 tools/cobertura.py $(BUILD_COV)/cobertura.json include/zarnxml
	@echo "Left out: branches that only an exception takes, those the compiler marks unreachable, and"
	@echo "the ZARN_FRONTERA lines (each function's catch of a failed allocation: exception-only code)."
	@echo "HTML report: $(BUILD_COV)/html/index.html"

# The build's own lines go to a log and show only when it fails, so that the demo speaks alone.
demo:
	@echo "Building the library and the demo (the build's output goes to build/demo-build.log)"
	@mkdir -p build && $(MAKE) --no-print-directory build >build/demo-build.log 2>&1 || \
	  { cat build/demo-build.log; exit 1; }
	@$(BUILD)/examples/zarnxml_demo $(BUILD)/demo

bench:
	$(call need,$(BASE_PKGS) $(BENCH_PKGS))
	cmake -S . -B $(BUILD_BENCH) -DCMAKE_BUILD_TYPE=Release -DZARNXML_TESTS=OFF -DZARNXML_BENCH=ON
	cmake --build $(BUILD_BENCH) -j$(JOBS)
	BENCH_RUNS='$(BENCH_RUNS)' BENCH_SIZES='$(BENCH_SIZES)' bench/run.sh $(BUILD_BENCH)

tsan:
	$(call need,$(BASE_PKGS) $(TEST_PKGS))
	cmake -S . -B $(BUILD_TSAN) -DCMAKE_BUILD_TYPE=Debug -DZARNXML_TSAN=ON -DZARNXML_TESTS=ON
	cmake --build $(BUILD_TSAN) -j$(JOBS)
	cd $(BUILD_TSAN) && ctest --output-on-failure -j$(JOBS)

# libFuzzer targets, built with clang (ASan, UBSan): each runs FUZZ_SECONDS over its growing
# corpus in $(BUILD_FUZZ)/corpus; a failing input lands in fuzz/regresion/<target>/.
fuzz-build:
	$(call need,$(BASE_PKGS) $(FUZZ_PKGS))
	CC=clang CXX=clang++ cmake -S . -B $(BUILD_FUZZ) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DZARNXML_FUZZ=ON -DZARNXML_TESTS=OFF
	cmake --build $(BUILD_FUZZ) -j$(JOBS) --target fuzz_objetivos

fuzz: fuzz-build
	fuzz/corre.sh $(BUILD_FUZZ) $(FUZZ_SECONDS)

# The same, short and deterministic (-seed=1, FUZZ_RUNS inputs, at most 30 s a target): for CI.
fuzz-smoke: fuzz-build
	fuzz/corre.sh $(BUILD_FUZZ) 30 $(FUZZ_RUNS)

install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

clean:
	rm -rf build
