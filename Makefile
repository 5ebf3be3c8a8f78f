# Two commands a user needs: `make demo` and `make test`.
BUILD      ?= build
ASAN_BUILD ?= build-asan
JOBS       ?= $(shell nproc)

FUZZ_BUILD   ?= build-fuzz
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?= dat nat ini timezone cache pla options parse atlas events aaf dignity vpt vcr interp grouppnt

.PHONY: all deps build demo desktop screenshots install package test test-asan test-plain bench clean fuzz fuzz-build

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

# Auto Rectify on the bundled sample, worked on a copy so that the position
# caches it writes stay out of samples/.
demo: build
	@mkdir -p $(BUILD)/demo
	@cp samples/einstein.dat samples/einstein.nat samples/einstein.txt $(BUILD)/demo/
	$(BUILD)/cli/vintar --config-dir $(BUILD)/demo/config rectify auto $(BUILD)/demo/einstein.dat

# The desktop program on a copy of the bundled sample (needs a display).
desktop: build
	@mkdir -p $(BUILD)/demo
	@cp samples/einstein.dat samples/einstein.nat samples/einstein.txt $(BUILD)/demo/
	$(BUILD)/screens/vintar-desktop --config-dir $(BUILD)/demo/config $(BUILD)/demo/einstein.dat

# Remakes the README's pictures, offscreen: every screen on the rectification
# sample, the research sample and the family sample, each in its own folder.
SCREENSHOT_SAMPLES ?= einstein gauquelin_a1 royal_family
screenshots: build
	@for stem in $(SCREENSHOT_SAMPLES); do \
	  mkdir -p $(BUILD)/demo $(BUILD)/screenshots/$$stem && \
	  cp samples/$$stem.dat samples/$$stem.nat $(BUILD)/demo/ && \
	  { [ ! -f samples/$$stem.txt ] || cp samples/$$stem.txt $(BUILD)/demo/; } && \
	  QT_QPA_PLATFORM=offscreen $(BUILD)/screens/vintar-desktop --config-dir $(BUILD)/demo/config \
	    --screenshot $(BUILD)/screenshots/$$stem $(BUILD)/demo/$$stem.dat || exit 1; \
	done

# Installs under /usr/local (PREFIX=... for elsewhere); `make package`
# builds the Debian package in $(BUILD).
PREFIX ?= /usr/local
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

package: build
	cd $(BUILD) && cpack -G DEB

test-plain: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

$(ASAN_BUILD)/CMakeCache.txt: | deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DVINTAR_SANITIZE=ON -DVINTAR_BENCH=OFF

test-asan: deps $(ASAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

test: test-plain test-asan

bench: build
	$(BUILD)/bench/vintar_bench

# libFuzzer harnesses of the file readers, built with clang under ASan and
# UBSan; each runs FUZZ_SECONDS on a working copy of its corpus in
# $(FUZZ_BUILD)/corpus. Crashing inputs land in $(FUZZ_BUILD)/artifacts.
$(FUZZ_BUILD)/CMakeCache.txt: | deps
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DVINTAR_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo

fuzz-build: deps $(FUZZ_BUILD)/CMakeCache.txt
	cmake --build $(FUZZ_BUILD) -j $(JOBS) --target $(addprefix fuzz_,$(FUZZ_TARGETS))

fuzz: fuzz-build
	bash fuzz/run-fuzzers.sh $(FUZZ_BUILD) $(FUZZ_SECONDS) $(FUZZ_TARGETS)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD)
