# Two entry points that work on a fresh Debian machine: both install what is missing first.
PRESET ?= dev
JOBS ?= $(shell nproc)

.PHONY: bootstrap configure build test fuzz clean

bootstrap:
	./scripts/bootstrap

configure: bootstrap
	cmake --preset $(PRESET)

build: configure
	cmake --build --preset $(PRESET) -j $(JOBS)

test: build
	ctest --preset $(PRESET) -j $(JOBS)

# The libFuzzer targets (clang, sanitizers); see fuzz/README.md for running them.
fuzz:
	./scripts/bootstrap --fuzz
	cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DOSTREL_FUZZ=ON \
	      -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCHMARKS=OFF -DOSTREL_BUILD_TOOLS=OFF \
	      -DOSTREL_BUILD_EXAMPLES=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build build/fuzz -j $(JOBS)

clean:
	rm -rf build

# The showcase: builds the demo host and the development service, then runs scripts/run-demo.
# `make demo DEMO=--autoplay` (or a machine without a display) walks the install flow by itself;
# `make demo DEMO=--quick` runs the Qt Quick host instead (`DEMO="--quick --autoplay"` walks it).
.PHONY: demo
demo: configure
	cmake --build --preset $(PRESET) --target ostrel-demo ostrel-demo-quick ostrel-devserver -j $(JOBS)
	./scripts/run-demo --build build/$(PRESET) $(DEMO)
