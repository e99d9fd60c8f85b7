# From a fresh clone on Debian 12 to a working Kelp: `make run` and `make test` need nothing else.
# With CI=true in the environment warnings are errors.

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
# Spent on each fuzzing target.
FUZZ_SECONDS ?= 30
EXAMPLE := examples/kitchen.scene

.DEFAULT_GOAL := build
.PHONY: setup build release debug sanitize run test test-sanitize format format-check check-includes \
        tidy bench bench-sizes growth fuzz proof install clean

# $(call build,PRESET[,TARGET]) configures a preset and builds all of it, or one target.
define build
cmake --preset $(1) -DKELP_WARNINGS_AS_ERRORS=$(if $(CI),ON,OFF)
cmake --build --preset $(1) -j $(JOBS) $(if $(2),--target $(2))
endef

setup:
	scripts/setup

build: release

release debug sanitize: setup
	$(call build,$@)

run: setup
	$(call build,release,kelp_program)
	build/release/cli/kelp check --stats examples/*.scene
	build/release/cli/kelp dump $(EXAMPLE)

test: release
	ctest --preset release -j $(JOBS)

test-sanitize: sanitize
	ctest --preset sanitize -j $(JOBS)

format: setup
	scripts/format

format-check: setup
	scripts/format --check

check-includes: setup
	scripts/check_includes

tidy:
	scripts/setup clang-tidy
	cmake --preset release
	scripts/tidy build/release

# Readers that Kelp is compared with; nothing else needs them.
bench bench-sizes:
	scripts/setup python3 libsimdjson-dev nlohmann-json3-dev libpugixml-dev
	$(call build,release,kelp_bench kelp_program)
	scripts/bench $(if $(filter bench-sizes,$@),--sizes)

fuzz: setup
	scripts/fuzz $(FUZZ_SECONDS)

# Whether twice of anything takes more than about twice as long.
growth: setup
	$(call build,release,kelp_growth)
	build/release/bench/kelp_growth

# Everything that is promised in docs/reliability.md, proved anew; takes long.
proof: setup
	scripts/proof

install: release
	cmake --install build/release --prefix $(PREFIX)

clean:
	rm -rf build
