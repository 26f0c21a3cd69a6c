# make build   both architectures: build/x64/SETUP.EXE and build/i686/SETUP.EXE
# make test    installs what is missing, builds, runs every test under Wine
# make mutants puts each fault of scripts/mutants/faults.txt into a copy and runs the tests
# make demo    shows the program on $DISPLAY, or on a virtual display with a screenshot
.PHONY: all deps build test demo clean bench mutants

BUILD_TYPE ?= MinSizeRel
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

all: build

deps:
	@scripts/install-deps.sh

build/x64/CMakeCache.txt:
	@echo "Configuring build/x64"
	@cmake -S . -B build/x64 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-x86_64.cmake \
	  -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) -DTAVRIN_TESTS=ON >/dev/null

build/i686/CMakeCache.txt:
	@echo "Configuring build/i686"
	@cmake -S . -B build/i686 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-i686.cmake \
	  -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) >/dev/null

build: deps build/x64/CMakeCache.txt build/i686/CMakeCache.txt
	@scripts/build.sh x64 $(JOBS)
	@scripts/build.sh i686 $(JOBS)

test: build
	@scripts/run-tests.sh

demo: build
	@scripts/demo.sh

clean:
	rm -rf build

bench: build
	scripts/run-bench.sh

mutants: build
	scripts/mutants/replay.py
