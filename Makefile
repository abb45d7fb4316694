# The front door. The presets in CMakePresets.json are the house behind it.
.PHONY: run test bench fuzz format lint install packages configure clean

BUILD := build/release
# -DLCD_WERROR=ON and the like
FLAGS ?=
SOURCES = $(shell git ls-files -co --exclude-standard '*.h' '*.cpp')
# What lint looks at: the files that differ from this revision.
LINT_BASE ?= $(shell git rev-parse -q --verify HEAD~1 || git hash-object -t tree /dev/null)

run: configure
	@cmake --build $(BUILD) --target lcdpanel -- --quiet
	@$(BUILD)/bin/lcdpanel demo

test: configure
	@cmake --build $(BUILD) -- --quiet
	@ctest --preset release

packages:
	@cmake/install-packages.sh

configure: packages
	@mkdir -p build && cmake --preset release $(FLAGS) > $(BUILD).log 2>&1 || { cat $(BUILD).log; exit 1; }

bench: configure
	@cmake --build $(BUILD) --target lcd_bench -- --quiet
	@$(BUILD)/bin/lcd_bench

fuzz: packages
	@mkdir -p build && cmake --preset fuzz > build/fuzz.log 2>&1 || { cat build/fuzz.log; exit 1; }
	@cmake --build build/fuzz --target fuzz_programs -- --quiet
	@fuzz/run.sh build/fuzz

format:
	@clang-format -i $(SOURCES)

lint: packages
	@clang-format --dry-run -Werror $(SOURCES)
	@mkdir -p build && cmake --preset threadsafety > build/threadsafety.log 2>&1 || { cat build/threadsafety.log; exit 1; }
	@cmake --build build/threadsafety -- --quiet
	@git diff --name-only --diff-filter=d $(LINT_BASE) -- '*.cpp' | \
	    xargs -r -P 2 -n 4 clang-tidy -p build/threadsafety --quiet --warnings-as-errors='*' 2> build/lint.log \
	    || { cat build/lint.log; exit 1; }

install: configure
	@cmake --build $(BUILD) -- --quiet
	@cmake --install $(BUILD)

clean:
	rm -rf build
