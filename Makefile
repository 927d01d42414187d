# The two commands of the project, each from a fresh clone on a fresh Debian 12 machine, and the
# smaller ones that developers use. PRESET chooses the build (CMakePresets.json).
PRESET ?= release
BUILD  := build/$(PRESET)

.PHONY: all demo test build packages manual reference package format format-check lint bench \
        detection-rates fuzz clean

all: build

packages:
	@tools/install_packages.sh

$(BUILD)/build.ninja: | packages
	cmake --preset $(PRESET)

build: $(BUILD)/build.ninja
	cmake --build --preset $(PRESET)

demo: build
	@tools/demo.sh $(BUILD)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j 2

bench: build
	@for program in $(BUILD)/bench/*-bench; do $$program || exit 1; done

# The manual in HTML, the manual page and the completions; the reference of the public headers. Into
# build/release/documents.
manual reference: build
	@tools/install_packages.sh tools/packaging-packages.txt
	cmake --preset $(PRESET) >/dev/null
	cmake --build --preset $(PRESET) --target $@

# Debian packages, into build/packages, looked at by lintian.
package: packages
	@tools/install_packages.sh tools/packaging-packages.txt
	rm -rf build/packages
	debian/rules binary
	lintian --fail-on error build/packages/*.deb
	debian/rules clean

# How often code page and language are told right, on texts of Debian's packages (docs/code-pages.md).
detection-rates: build
	@tools/detection/measure_rates.py --program $(BUILD)/cli/genutil

fuzz:
	$(MAKE) build PRESET=fuzz

format:
	git ls-files '*.h' '*.cpp' | grep -v 'src/text/tables/' | xargs clang-format -i

format-check:
	git ls-files '*.h' '*.cpp' | grep -v 'src/text/tables/' | xargs clang-format --dry-run -Werror

# Under the preset of clang, whose precompiled headers clang-tidy can read.
lint:
	$(MAKE) build PRESET=clang
	git ls-files 'src/*.cpp' 'cli/*.cpp' | grep -v 'src/text/tables/' | xargs -P 2 -n 4 clang-tidy -p build/clang --quiet

clean:
	rm -rf build
