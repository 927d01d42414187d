#!/usr/bin/env python3
"""What a late-bound call costs beside a bare ctypes call of the same function.

    GENERALUTILITIES_LIBRARY=build/release/lib/libGeneralUtilities.so python/bench/late_binding_bench.py

Both make upper case of the same 100 units, from a `str` to a `str`. The parts below are steps that
the two calls share or that one of them has alone. Rounds of all of them alternate, so that a busy
moment of the machine falls on all alike; the ratio is that of the medians.
"""

import ctypes
import statistics
import sys
import time
from ctypes import byref, c_char_p, c_int32, c_uint32, c_void_p
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1]))
import generalutilities
from generalutilities import runtime, type_information

TEXT = ("Straße, crème brûlée, über; " * 4)[:100]
ROUNDS, CALLS = 41, 3000

utils = generalutilities.create("StringUtils")
members = type_information.types()["IStringUtils"].members
place = 7 + next(i for i, member in enumerate(members) if member.name == "ToUpper")
interface, _ = utils._held()
to_upper = runtime.Operation(place, c_void_p, c_void_p).of(interface)

bare_library = ctypes.CDLL(runtime.library_path())
allocate, free, length = (bare_library[name] for name in
                          ("SysAllocStringLen", "SysFreeString", "SysStringByteLen"))
allocate.restype, allocate.argtypes = c_void_p, [c_char_p, c_uint32]
free.restype, free.argtypes = None, [c_void_p]
length.restype, length.argtypes = c_uint32, [c_void_p]


def bare():
    units = TEXT.encode("utf-16-le", "surrogatepass")
    given = allocate(units, len(units) // 2)
    made = c_void_p()
    status = to_upper(interface, given, byref(made))
    if status < 0:
        raise RuntimeError
    text = ctypes.string_at(made.value, length(made.value)).decode("utf-16-le", "surrogatepass")
    free(given)
    free(made.value)
    return text


def late():
    return utils.ToUpper(TEXT)


ready = runtime.allocate_string(TEXT)
received = c_void_p()


def function_alone():
    to_upper(interface, ready, byref(received))
    free(received.value)


def text_in():
    free(runtime.allocate_string(TEXT))


def text_out():
    return runtime.read_string(ready)


WORK = {"late-bound call": late, "bare ctypes call": bare,
        "  text into a BSTR, and freeing it": text_in,
        "  the function on ready memory, and freeing its result": function_alone,
        "  text out of a BSTR": text_out}


def main():
    if late() != bare():
        raise SystemExit("the two calls differ")
    times = {name: [] for name in WORK}
    for _ in range(ROUNDS):
        for name, work in WORK.items():
            start = time.perf_counter_ns()
            for _ in range(CALLS):
                work()
            times[name].append((time.perf_counter_ns() - start) / CALLS)
    medians = {name: statistics.median(found) for name, found in times.items()}
    for name, median in medians.items():
        print(f"{name:56} {median:8.0f} ns   x bare {median / medians['bare ctypes call']:.2f}")


main()
