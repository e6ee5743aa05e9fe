# The two everyday commands:
#   make run    the main job on the embedded defaults
#   make test   install what is missing, build with sanitizers, run every test
.PHONY: run test build bench bootstrap clean

JOBS ?= 2

bootstrap:
	@scripts/bootstrap

build: bootstrap
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)

test: build
	ctest --preset dev

run: build
	@scripts/demo

bench: bootstrap
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	@for b in build/release/bench/*_bench; do echo "== $$b"; $$b; done

clean:
	rm -rf build
