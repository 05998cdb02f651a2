# Set-up and build entry points. Each target installs missing Debian packages (when run as
# root), configures, builds and runs, so it works as the first command on a fresh machine.

BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 180
PACKAGES   = cmake g++ make pkg-config libsqlite3-dev libgtest-dev libgmock-dev libbenchmark-dev \
             clang libclang-rt-14-dev libpq-dev postgresql

.PHONY: all deps build demo test test-normal test-install test-sanitize bench fuzz soak clean

all: build

deps:
	@if command -v dpkg >/dev/null 2>&1; then \
	  missing=""; \
	  for p in $(PACKAGES); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	  if [ -n "$$missing" ]; then \
	    if [ "$$(id -u)" = 0 ]; then \
	      echo "installing:$$missing"; \
	      apt-get update -q && DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $$missing; \
	    else \
	      echo "missing packages:$$missing (run as root, or install them with apt-get)"; exit 1; \
	    fi; \
	  fi; \
	fi

$(BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

demo: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS) --target tarsel_demo
	./$(BUILD)/examples/tarsel_demo

test-normal: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# Sanitizer build with clang: AddressSanitizer and UndefinedBehaviorSanitizer over every test,
# plus the fuzz targets, each run a fixed number of times from its committed corpus.
$(ASAN_BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DTARSEL_SANITIZE=ON -DTARSEL_FUZZ=ON -DTARSEL_BUILD_EXAMPLES=OFF

test-sanitize: deps $(ASAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS)

# Installs the normal build into a temporary prefix and builds a small program against it,
# once through the CMake package and once through pkg-config, then runs both, and runs the
# installed utility on the file they wrote.
STAGE = $(BUILD)/stage
test-install: build
	rm -rf $(STAGE) && cmake --install $(BUILD) --prefix $(CURDIR)/$(STAGE) >/dev/null
	cmake -S tests/consumer -B $(STAGE)/consumer-cmake -DCMAKE_PREFIX_PATH=$(CURDIR)/$(STAGE) >/dev/null
	cmake --build $(STAGE)/consumer-cmake >/dev/null
	mkdir -p $(STAGE)/run && LD_LIBRARY_PATH=$(CURDIR)/$(STAGE)/lib:$(CURDIR)/$(STAGE)/lib/$$(gcc -print-multiarch) \
	  $(STAGE)/consumer-cmake/consumer $(STAGE)/run
	PKG_CONFIG_PATH=$$(dirname $$(find $(CURDIR)/$(STAGE) -name tarsel.pc)) && export PKG_CONFIG_PATH && \
	  c++ -std=c++17 tests/consumer/main.cpp $$(pkg-config --cflags --libs tarsel) -o $(STAGE)/consumer-pkgconfig && \
	  LD_LIBRARY_PATH=$$(pkg-config --variable=libdir tarsel) $(STAGE)/consumer-pkgconfig $(STAGE)/run
	$(STAGE)/bin/tarsel stat $(STAGE)/run/consumer.dat && $(STAGE)/bin/tarsel dump $(STAGE)/run/consumer.dat --format csv >/dev/null

test: test-normal test-install test-sanitize

$(BENCH_BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DTARSEL_BUILD_BENCH=ON -DTARSEL_BUILD_TESTS=OFF

bench: deps $(BENCH_BUILD)/CMakeCache.txt
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	@for b in $(BENCH_BUILD)/bench/bench_*; do echo "== $$b"; $$b || exit 1; done

fuzz: deps $(ASAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	@for f in $(ASAN_BUILD)/tests/fuzz_*; do \
	  name=$$(basename $$f); name=$${name#fuzz_}; out=$(ASAN_BUILD)/fuzz_long/$$name; \
	  mkdir -p $$out; echo "== $$name for $(FUZZ_SECONDS) s"; \
	  $$f $$out tests/fuzz/corpus/$$name -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 || exit 1; \
	done

# A long crash storm on the record manager: 1000 SIGKILLs among its writers, then the figures
# (kills, acknowledged calls, lost, phantom).
SOAK_KILLS ?= 1000
soak: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) --target test_reliability -j $(JOBS)
	TARSEL_STORM_KILLS=$(SOAK_KILLS) ./$(BUILD)/tests/test_reliability --gtest_filter='CrashStorm.*'

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD)
