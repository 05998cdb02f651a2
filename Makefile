# Set-up and build entry points. Each target installs missing Debian packages (when run as
# root), configures, builds and runs, so it works as the first command on a fresh machine.

BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 180
PACKAGES   = cmake g++ make pkg-config libsqlite3-dev libgtest-dev libgmock-dev libbenchmark-dev \
             clang libclang-rt-14-dev libpq-dev postgresql

.PHONY: all deps bench-deps build demo demo-server test test-normal test-install test-sanitize windows windows-deps bench fuzz soak clean

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

# The walk-through on the server store: a PostgreSQL server of its own for the run, and two
# workstations that reach the shop's files through different paths.
demo-server: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS) --target tarsel_demo
	tools/with-server.sh ./$(BUILD)/examples/tarsel_demo

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

# Windows DLLs cross-built with mingw-w64, 32-bit (the application's platform) and 64-bit, with
# SQLite compiled in from the amalgamation of a pinned npm package, checked by its checksum. Both
# DLLs must export exactly the names in windows/tarsel.exports; a small 32-bit program links
# against the 32-bit one; the 64-bit test programs run under wine64.
WIN32_BUILD ?= build-win32
WIN64_BUILD ?= build-win64
WIN_CACHE   ?= build-windows-cache
WIN_PACKAGES = g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix binutils-mingw-w64 wine64 googletest
SQLITE_NPM_PACKAGE = better-sqlite3
SQLITE_NPM_VERSION = 12.9.0
SQLITE_NPM_SHA256  = ad0e29650140c49d0335b1d356596aa8166f12b758f418a98446130e3278f250
SQLITE_DIR = $(WIN_CACHE)/$(SQLITE_NPM_PACKAGE)-$(SQLITE_NPM_VERSION)
WIN_TESTS  = test_windows test_conformance test_core test_estimating test_production test_catalogue \
             test_labor test_pricing test_measure test_purchasing

windows-deps:
	@$(MAKE) --no-print-directory deps PACKAGES="$(WIN_PACKAGES)"

$(SQLITE_DIR)/sqlite3.c: | windows-deps
	command -v npm >/dev/null || $(MAKE) --no-print-directory deps PACKAGES=npm
	mkdir -p $(WIN_CACHE)
	cd $(WIN_CACHE) && npm pack --silent $(SQLITE_NPM_PACKAGE)@$(SQLITE_NPM_VERSION) >/dev/null
	echo "$(SQLITE_NPM_SHA256)  $(WIN_CACHE)/$(SQLITE_NPM_PACKAGE)-$(SQLITE_NPM_VERSION).tgz" | sha256sum -c -
	rm -rf $(SQLITE_DIR) && mkdir -p $(SQLITE_DIR)
	tar -xzf $(WIN_CACHE)/$(SQLITE_NPM_PACKAGE)-$(SQLITE_NPM_VERSION).tgz -C $(SQLITE_DIR) --strip-components=3 \
	  package/deps/sqlite3/sqlite3.c package/deps/sqlite3/sqlite3.h

WIN_CONFIGURE = -DCMAKE_BUILD_TYPE=Release -DTARSEL_BUILD_TOOLS=OFF -DTARSEL_BUILD_EXAMPLES=OFF \
  -DTARSEL_SQLITE_AMALGAMATION=$(CURDIR)/$(SQLITE_DIR)

$(WIN32_BUILD)/CMakeCache.txt: $(SQLITE_DIR)/sqlite3.c
	cmake -S . -B $(WIN32_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-i686.cmake -DTARSEL_BUILD_TESTS=OFF $(WIN_CONFIGURE)

$(WIN64_BUILD)/CMakeCache.txt: $(SQLITE_DIR)/sqlite3.c
	cmake -S . -B $(WIN64_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-x86_64.cmake $(WIN_CONFIGURE)

windows: windows-deps $(WIN32_BUILD)/CMakeCache.txt $(WIN64_BUILD)/CMakeCache.txt
	cmake --build $(WIN32_BUILD) -j $(JOBS)
	rm -rf $(WIN32_BUILD)/stage && cmake --install $(WIN32_BUILD) --prefix $(CURDIR)/$(WIN32_BUILD)/stage >/dev/null
	PATH=/usr/i686-w64-mingw32/bin:$$PATH windows/exports.sh check $(WIN32_BUILD)/stage/bin/tarsel.dll windows/tarsel.exports
	i686-w64-mingw32-g++-posix -std=c++17 -static-libgcc -static-libstdc++ tests/consumer/main.cpp -I$(WIN32_BUILD)/stage/include -I$(WIN32_BUILD)/stage/include/tarsel \
	  -L$(WIN32_BUILD)/stage/lib -ltarsel -o $(WIN32_BUILD)/stage/consumer.exe
	cmake --build $(WIN64_BUILD) -j $(JOBS) --target tarsel $(WIN_TESTS)
	PATH=/usr/x86_64-w64-mingw32/bin:$$PATH windows/exports.sh check $(WIN64_BUILD)/bin/tarsel.dll windows/tarsel.exports
	tests/windows/run-wine.sh $(WIN64_BUILD) $(WIN_TESTS)

test: test-normal test-install test-sanitize windows

$(BENCH_BUILD)/CMakeCache.txt: | bench-deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DTARSEL_BUILD_BENCH=ON -DTARSEL_BUILD_TESTS=OFF

# LMDB is a reference the record manager benchmark measures against; the library never links it.
bench-deps: deps
	@if command -v dpkg >/dev/null 2>&1 && ! dpkg -s liblmdb-dev >/dev/null 2>&1; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    apt-get update -q && DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends liblmdb-dev; \
	  else echo "missing package: liblmdb-dev"; exit 1; fi; \
	fi

# The server benchmark runs the server on the last processor and the client on the first: left
# to the scheduler, whichever side happens to share a processor with its server process gets the
# faster round trips, and the two sides' figures stop being comparable.
SERVER_CPU = $(shell echo $$(( $$(nproc 2>/dev/null || echo 1) - 1 )))
bench: bench-deps $(BENCH_BUILD)/CMakeCache.txt
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	@for b in $(BENCH_BUILD)/bench/bench_*; do echo "== $$b"; \
	  case $$b in *_server) taskset -c $(SERVER_CPU) tools/with-server.sh taskset -c 0 $$b ;; *) $$b ;; esac || exit 1; done

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
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD) $(WIN32_BUILD) $(WIN64_BUILD) $(WIN_CACHE)
