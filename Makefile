# make run     build, make sample data, serve the console until Ctrl-C
# make build   leave the optimised program at build/kalvo
# make test    build and run every test; PRESET=asan or tsan runs them under a sanitizer
# make test-long  the same with the long form of those that have one: more rounds, larger stores
# make attack  the attacks among the tests alone, and a report of what became of each
# make tidy    clang-tidy over src/, base/, adapters/ and host/
# make fuzz    every parser of outside text under libFuzzer, SECONDS=60 each
# make bench   everything that has a goal of speed, with the ratio, the goal, and whether it is met
# make mutate  mistakes put into FOLDERS one at a time, and which of them the tests notice

PRESET ?= dev
PORT ?= 8080
LISTEN ?= 127.0.0.1:$(PORT)
SAMPLE ?= small
SECONDS ?= 60
JOBS ?= $(shell nproc)
FOLDERS ?= src include
MUTANTS ?= 300

.PHONY: run build test test-long attack tidy format fuzz bench mutate packages clean

run: build build/sample/kalvo.db build/sample/users
	@echo "Sign in as administrator, alice (who may open her own mailbox) or visitor; password: kalvo-sample"
	@exec build/kalvo serve --config kalvo.toml --listen $(LISTEN)

build:
	@tools/install-packages build run
	@mkdir -p build
	@cmake --preset release >build/release.log 2>&1 || { cat build/release.log; exit 1; }
	@cmake --build --preset release --parallel $(JOBS) --target kalvo
	@cp -f build/release/kalvo build/kalvo.new && mv -f build/kalvo.new build/kalvo

build/sample/kalvo.db: | build
	@build/kalvo sample --out build/sample --size $(SAMPLE)

# Three users with different rights. Their password is no secret, and is good for the sample alone.
build/sample/users: build/sample/kalvo.db
	@rm -f $@
	@echo kalvo-sample | build/kalvo passwd --users $@.part administrator --administrator --drill-down >build/users.log
	@echo kalvo-sample | build/kalvo passwd --users $@.part alice --drill-down >>build/users.log
	@echo kalvo-sample | build/kalvo passwd --users $@.part visitor >>build/users.log
	@mv $@.part $@

test:
	@tools/install-packages
	@cmake --preset $(PRESET)
	@cmake --build --preset $(PRESET) --parallel $(JOBS)
	@tools/run-tests build/$(PRESET)

test-long:
	@tools/install-packages
	@cmake --preset $(PRESET)
	@cmake --build --preset $(PRESET) --parallel $(JOBS)
	@tools/run-tests --long build/$(PRESET)

attack:
	@tools/install-packages
	@cmake --preset $(PRESET)
	@cmake --build --preset $(PRESET) --parallel $(JOBS)
	@tests/attack/report.py build/$(PRESET)

tidy:
	@tools/install-packages
	@cmake --preset dev
	@tools/tidy build/dev

format:
	@tools/check-format --fix

fuzz:
	@tools/install-packages
	@cmake --preset fuzz
	@cmake --build --preset fuzz --parallel $(JOBS) --target fuzz_programs
	@tools/fuzz build/fuzz $(SECONDS)

bench:
	@tools/install-packages
	@cmake --preset bench
	@cmake --build --preset bench --parallel $(JOBS) --target kalvo limit product script_cost load fetch_benchmark imap_benchmark
	@bench/run.py build/bench

mutate:
	@tools/install-packages
	@tools/mutate $(FOLDERS) --mutants $(MUTANTS) --jobs $(JOBS)

packages:
	@tools/install-packages

clean:
	rm -rf build
