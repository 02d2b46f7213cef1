# The two ways in: `make run` builds and starts Scrivlet, `make test` builds and runs
# every test. Both first install whatever Debian packages are missing.
PRESET ?= release
BUILD_DIR := build/$(PRESET)
JOBS ?= $(shell nproc)

.PHONY: all deps configure build run test bench install clean

all: build

deps:
	scripts/install-deps

configure: deps
	@if [ ! -f $(BUILD_DIR)/build.ninja ]; then cmake --preset $(PRESET); fi

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	scripts/run-app $(BUILD_DIR)

test: build
	scripts/run-tests $(BUILD_DIR)

bench: build
	scripts/run-bench $(BUILD_DIR)

# Installs both programs, the desktop entry and the icon under PREFIX (default
# /usr/local), staged below DESTDIR when it is set.
PREFIX ?= /usr/local
install: build
	DESTDIR=$(DESTDIR) cmake --install $(BUILD_DIR) --prefix $(PREFIX)

clean:
	rm -rf build
