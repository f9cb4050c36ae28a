# Two entry points that work on a fresh Debian machine: both install what is missing first.
PRESET ?= dev
JOBS ?= $(shell nproc)

.PHONY: bootstrap configure build test clean

bootstrap:
	./scripts/bootstrap

configure: bootstrap
	cmake --preset $(PRESET)

build: configure
	cmake --build --preset $(PRESET) -j $(JOBS)

test: build
	ctest --preset $(PRESET) -j $(JOBS)

clean:
	rm -rf build
