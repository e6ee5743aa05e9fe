# The two everyday commands:
#   make run    the main job on the embedded defaults
#   make test   install what is missing, build with sanitizers, run every test
# and   make soak   the long chaos soak; make fuzz   every libFuzzer harness of fuzz/
.PHONY: run test build build-tsan bench soak fuzz bootstrap bootstrap-run clean

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
SOAK_PARALLEL ?= 8
soak: bootstrap
	cmake --preset release
	cmake --build --preset release -j $(JOBS) --target varnel varnel-mock-commerce varnel-chaos
	build/release/apps/varnel-chaos/varnel-chaos --renewals $(SOAK_RENEWALS) --kills $(SOAK_KILLS) \
	  --parallel $(SOAK_PARALLEL) --deadline 14400

# Each harness of fuzz/ on its seed corpus (new inputs kept in build/fuzz/work),
# with <harness>.dict when there is one, else answers.dict, for FUZZ_TIME
# seconds or FUZZ_RUNS executions, whichever ends first; prints the number of
# executions and stops at the first crash, whose input and log stay in
# build/fuzz/work.
FUZZ_TIME ?= 60
FUZZ_RUNS ?= -1
FUZZERS ?= $(patsubst fuzz/%_fuzzer.cpp,%,$(wildcard fuzz/*_fuzzer.cpp))
fuzz: bootstrap
	cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	      -DVARNEL_BUILD_FUZZ=ON -DVARNEL_BUILD_TESTS=OFF -DVARNEL_BUILD_APPS=OFF -DVARNEL_BUILD_SCREENS=OFF
	cmake --build build/fuzz -j $(JOBS) --target $(addsuffix _fuzzer,$(FUZZERS))
	@for f in $(FUZZERS); do \
	  dict=fuzz/$$f.dict; [ -f $$dict ] || dict=fuzz/answers.dict; \
	  mkdir -p build/fuzz/work/$$f; echo "== $$f ($(FUZZ_TIME) s)"; \
	  build/fuzz/fuzz/$${f}_fuzzer -dict=$$dict -max_total_time=$(FUZZ_TIME) -runs=$(FUZZ_RUNS) -print_final_stats=1 \
	    -artifact_prefix=build/fuzz/work/$$f- build/fuzz/work/$$f fuzz/corpus/$$f > build/fuzz/work/$$f.log 2>&1; \
	  status=$$?; grep -E '^stat::number_of_executed_units|ERROR|SUMMARY|Test unit written' build/fuzz/work/$$f.log; \
	  [ $$status -eq 0 ] || { echo "$$f failed; its log: build/fuzz/work/$$f.log"; exit 1; }; \
	done

clean:
	rm -rf build
