# Ombrith Valkesh: one command to play, one to test. Both install what is missing first.

BUILD      := build
TEST_BUILD := build/sanitize
JOBS       ?= $(shell nproc)
PYTHON     := /usr/bin/python3

RUN_PACKAGES  := g++ cmake make libsfml-dev nlohmann-json3-dev
TEST_PACKAGES := $(RUN_PACKAGES) libgtest-dev libbenchmark-dev xvfb xauth xdotool imagemagick tiled \
                 python3-pil python3-numpy fonts-cardo fonts-dejavu-core

SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all build run test bench assets deps-run deps-test clean

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

build: deps-run
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./$(BUILD)/ombrith

test: deps-test build
	cmake -S . -B $(TEST_BUILD) -DCMAKE_BUILD_TYPE=Debug -DOV_SANITIZE=ON -DOV_TESTS=ON \
	      -DOV_GAME_BINARY=$(CURDIR)/$(BUILD)/ombrith >/dev/null
	cmake --build $(TEST_BUILD) -j $(JOBS)
	cd $(TEST_BUILD) && xvfb-run -a -s "-screen 0 1920x1080x24" env ALSOFT_DRIVERS=null \
	    ctest --output-on-failure

# Room load and frame times (figures go to docs/benchmarks.md).
bench: deps-test build
	xvfb-run -a -s "-screen 0 1920x1080x24" env ALSOFT_DRIVERS=null ./$(BUILD)/room_bench >/dev/null

assets: deps-test
	$(PYTHON) tools/make_assets.py

clean:
	rm -rf $(BUILD)
