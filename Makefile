# The two everyday commands:
#   make run    the main job on the embedded defaults
#   make test   install what is missing, build with sanitizers, run every test
# and   make fuzz   every libFuzzer harness of fuzz/, FUZZ_TIME seconds each
.PHONY: run test build build-tsan bench fuzz bootstrap clean

JOBS ?= 2
# The programs the main job runs; `make run` builds these and nothing else.
RUN_TARGETS ?= varnel varnel-mock-commerce

bootstrap:
	@scripts/bootstrap

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

run: bootstrap
	@cmake --preset run > /dev/null
	@cmake --build --preset run -j $(JOBS) --target $(RUN_TARGETS)
	@VARNEL_BIN_DIR=build/run/apps scripts/demo

bench: bootstrap
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	@for b in build/release/bench/*_bench; do echo "== $$b"; $$b; done

# Each harness of fuzz/ on its seed corpus (new inputs kept in build/fuzz/work),
# with <harness>.dict when there is one, else answers.dict; prints the number of
# executions and stops at the first crash, whose input and log stay in
# build/fuzz/work.
FUZZ_TIME ?= 60
FUZZERS ?= $(patsubst fuzz/%_fuzzer.cpp,%,$(wildcard fuzz/*_fuzzer.cpp))
fuzz: bootstrap
	cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	      -DVARNEL_BUILD_FUZZ=ON -DVARNEL_BUILD_TESTS=OFF -DVARNEL_BUILD_APPS=OFF -DVARNEL_BUILD_SCREENS=OFF
	cmake --build build/fuzz -j $(JOBS) --target $(addsuffix _fuzzer,$(FUZZERS))
	@for f in $(FUZZERS); do \
	  dict=fuzz/$$f.dict; [ -f $$dict ] || dict=fuzz/answers.dict; \
	  mkdir -p build/fuzz/work/$$f; echo "== $$f ($(FUZZ_TIME) s)"; \
	  build/fuzz/fuzz/$${f}_fuzzer -dict=$$dict -max_total_time=$(FUZZ_TIME) -print_final_stats=1 \
	    -artifact_prefix=build/fuzz/work/$$f- build/fuzz/work/$$f fuzz/corpus/$$f > build/fuzz/work/$$f.log 2>&1; \
	  status=$$?; grep -E '^stat::number_of_executed_units|ERROR|SUMMARY|Test unit written' build/fuzz/work/$$f.log; \
	  [ $$status -eq 0 ] || { echo "$$f failed; its log: build/fuzz/work/$$f.log"; exit 1; }; \
	done

clean:
	rm -rf build
