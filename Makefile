# The two everyday commands:
#   make run    the main job on the embedded defaults
#   make test   install what is missing, build with sanitizers, run every test
<<<<<<< HEAD
.PHONY: run test build build-tsan bench bootstrap bootstrap-run clean
=======
.PHONY: run test build build-tsan bench soak bootstrap clean
>>>>>>> chaos

JOBS ?= 2
# The programs the main job runs; `make run` builds these and nothing else.
RUN_TARGETS ?= varnel varnel-mock-commerce

# What each job needs: `make run` installs only the main job's packages;
# `make test` everything else as well (test framework, Qt, benchmark, clang).
bootstrap:
	@scripts/bootstrap test

bootstrap-run:
	@scripts/bootstrap run

build: bootstrap
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)

build-tsan: bootstrap
	cmake --preset tsan
	cmake --build --preset tsan -j $(JOBS)

# Everything under ASan and UBSan, then what runs on several threads under TSan.
test: build
	ctest --preset dev
	$(MAKE) --no-print-directory build-tsan
	ctest --preset tsan

run: bootstrap-run
	@cmake --preset run > /dev/null
	@cmake --build --preset run -j $(JOBS) --target $(RUN_TARGETS)
	@VARNEL_BIN_DIR=build/run/apps scripts/demo

bench:
	@scripts/bootstrap bench
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	@for b in build/release/bench/*_bench; do echo "== $$b"; $$b; done

# The long chaos soak on an optimised build: renewals with random faults and
# SIGKILLs against the mock commerce server, compared with its charges.
SOAK_RENEWALS ?= 10000
SOAK_KILLS ?= 1000
soak: bootstrap
	cmake --preset release
	cmake --build --preset release -j $(JOBS) --target varnel varnel-mock-commerce varnel-chaos
	build/release/apps/varnel-chaos/varnel-chaos --renewals $(SOAK_RENEWALS) --kills $(SOAK_KILLS) --deadline 14400

clean:
	rm -rf build
