# Ombrith Valkesh: one command to play, one to test. Both install what is missing first.

BUILD      := build
TEST_BUILD := build/sanitize
JOBS       ?= $(shell nproc)
PYTHON     := /usr/bin/python3

RUN_PACKAGES  := g++ cmake make libsfml-dev nlohmann-json3-dev
TEST_PACKAGES := $(RUN_PACKAGES) libgtest-dev libbenchmark-dev xvfb xauth xdotool imagemagick tiled \
                 python3-pil python3-numpy fonts-cardo fonts-dejavu-core

FUZZ_BUILD    := build/fuzz
FUZZ_PACKAGES := $(RUN_PACKAGES) clang libclang-rt-14-dev xvfb xauth
FUZZ_TARGETS  := save settings elevator_state animation room_map room_build
FUZZ_RUNS     ?= 1000000
FUZZ_TIME     ?= 3600

SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all build run test test-build soak fuzz bench assets deps-run deps-test deps-fuzz clean

all: build

# Installs the Debian packages in $(1) that are not installed yet.
define install_missing
	@missing=""; for p in $(1); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update -qq && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq $$missing; \
	fi
endef

deps-run:
	$(call install_missing,$(RUN_PACKAGES))

deps-test:
	$(call install_missing,$(TEST_PACKAGES))

deps-fuzz:
	$(call install_missing,$(FUZZ_PACKAGES))

build: deps-run
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./$(BUILD)/ombrith

test-build: deps-test build
	cmake -S . -B $(TEST_BUILD) -DCMAKE_BUILD_TYPE=Debug -DOV_SANITIZE=ON -DOV_TESTS=ON \
	      -DOV_GAME_BINARY=$(CURDIR)/$(BUILD)/ombrith >/dev/null
	cmake --build $(TEST_BUILD) -j $(JOBS)

test: test-build
	cd $(TEST_BUILD) && xvfb-run -a -s "-screen 0 1920x1080x24" env ALSOFT_DRIVERS=null \
	    ctest --output-on-failure -LE soak

# A thousand room changes in one game under the sanitizers: about a quarter of an hour.
soak: test-build
	cd $(TEST_BUILD) && xvfb-run -a -s "-screen 0 1920x1080x24" env ALSOFT_DRIVERS=null \
	    ctest --output-on-failure -L soak

# Each file reader fuzzed for $(FUZZ_RUNS) runs (or $(FUZZ_TIME) seconds, whichever comes first)
# from its committed seeds, at the least priority (findings go to docs/fuzzing.md). New inputs
# and crashes stay under $(FUZZ_BUILD); the targets work in a scratch folder of their own, so
# every path given to them is absolute. The room builder draws, so it runs on a virtual display,
# with the graphics libraries' own allocations left out of the leak reports. The room targets'
# inputs are large and raise thousands of features: there the plain scheduler spends far less
# time choosing the next input than the entropic one.
fuzz: deps-fuzz
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOV_FUZZ=ON >/dev/null
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	@set -e; for t in $(FUZZ_TARGETS); do \
	  mkdir -p $(CURDIR)/$(FUZZ_BUILD)/corpus/$$t $(CURDIR)/$(FUZZ_BUILD)/findings; \
	  set --; [ $$t != room_build ] || set -- xvfb-run -a -s "-screen 0 640x480x24"; \
	  flags=""; case $$t in room_*) flags=-entropic=0;; esac; \
	  echo "Fuzzing $$t ($(FUZZ_RUNS) runs, at most $(FUZZ_TIME) s)"; \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 \
	  "$$@" nice -n 19 ./$(FUZZ_BUILD)/fuzz_$$t -runs=$(FUZZ_RUNS) -max_total_time=$(FUZZ_TIME) \
	      -max_len=16384 -timeout=10 -close_fd_mask=3 $$flags \
	      -print_final_stats=1 -dict=$(CURDIR)/tests/fuzz/dict/$$t.dict \
	      -artifact_prefix=$(CURDIR)/$(FUZZ_BUILD)/findings/$$t- \
	      $(CURDIR)/$(FUZZ_BUILD)/corpus/$$t $(CURDIR)/tests/fuzz/corpus/$$t \
	      2>$(FUZZ_BUILD)/$$t.log || { tail -40 $(FUZZ_BUILD)/$$t.log; exit 1; }; \
	  grep -E "^#[0-9]+ +DONE|^Done|stat::" $(FUZZ_BUILD)/$$t.log; \
	done

# Room load and frame times (figures go to docs/benchmarks.md).
bench: deps-test build
	xvfb-run -a -s "-screen 0 1920x1080x24" env ALSOFT_DRIVERS=null ./$(BUILD)/room_bench >/dev/null

assets: deps-test
	$(PYTHON) tools/make_assets.py

clean:
	rm -rf $(BUILD)
