"""Objects from type information; docs/writing-a-client.md, which is tested too, has the rest."""

import ctypes
import datetime
import decimal
import gc
import inspect
import os
import random
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
from pathlib import Path

import generalutilities
from generalutilities import type_information
from generalutilities.type_information import CLASS


class Finding(unittest.TestCase):
    def test_the_library_is_found_beside_the_package_or_missed_with_words(self):
        package = Path(generalutilities.__file__).parent
        environment = {"PATH": os.environ["PATH"], "LD_PRELOAD": os.environ.get("LD_PRELOAD", "")}
        environment["ASAN_OPTIONS"] = "detect_leaks=0"
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(package, Path(folder) / package.name)
            command = [sys.executable, "-c", "import generalutilities"]
            missed = subprocess.run(command, cwd=folder, env=environment, capture_output=True)
            self.assertIn(b"set GENERALUTILITIES_LIBRARY to the path of lib", missed.stderr)
            (Path(folder) / package.name / generalutilities.runtime.FILE_NAMES[0]).symlink_to(
                generalutilities.runtime.library_path())
            subprocess.run(command, cwd=folder, env=environment, check=True)


class Values(unittest.TestCase):
    def test_every_value_comes_back_from_a_dictionary(self):
        store = generalutilities.create("qlnDictionary")
        kept = [None, True, False, 0, -1, 2**31 - 1, -2**31, 2**40, 2**64 - 1, 1.5, float("inf"), "",
                "a\0b", "\ud800x\udc00", "😀", datetime.datetime(2026, 2, 3, 12), [], [1, "x", [None]],
                [["a"], ["b"]], decimal.Decimal("-12.3456"), b"odd"]
        for number, value in enumerate(kept):
            store.Item[number] = value
        self.assertEqual([store.Item(number) for number in range(len(kept))], kept)
        self.assertEqual(len(store), len(kept))

    def test_numbers_of_ctypes_keep_their_type(self):
        store = generalutilities.create("qlnDictionary")
        for number, key in enumerate((ctypes.c_int16(5), ctypes.c_int32(5), ctypes.c_double(5))):
            store.Add(key, number)
        self.assertEqual(sorted(store.Items()), [0, 1, 2])  # three keys: their types differ
        store.Item["object"] = other = generalutilities.create("LongStack")
        other.Push(7)
        self.assertEqual(store.Item("object").Peek(), 7)

    def test_random_units_go_through_unharmed(self):
        seed = random.randrange(2**32)
        print(f"seed {seed}")
        source = random.Random(seed)
        utils = generalutilities.create("StringUtils")
        store = generalutilities.create("qlnDictionary")
        for _ in range(300):
            units = [source.choice((source.randrange(0x10000), source.randrange(0xD800, 0xE000)))
                     for _ in range(source.randrange(40))]
            text = b"".join(unit.to_bytes(2, "little") for unit in units).decode(
                "utf-16-le", "surrogatepass")
            store.Item[0] = text
            self.assertEqual(store.Item(0), text)
            self.assertEqual(len(utils.ToLower(text).encode("utf-16-le", "surrogatepass")),
                             2 * len(units))


class Members(unittest.TestCase):
    def test_each_member_of_the_type_library_has_its_place(self):
        for described in type_information.types().values():
            if described.kind != CLASS:
                continue
            made = getattr(generalutilities, described.name)
            for member in described.interfaces[0].members:
                if not member.name.startswith("_"):
                    self.assertTrue(hasattr(made, member.name), f"{described.name}.{member.name}")
        self.assertEqual(str(inspect.signature(generalutilities.StringUtils.FoldDigits)),
                         "(self, bstrIn: 'str', fMapAllNumerals: 'bool' = True) -> 'str'")

    def test_what_is_no_result_and_what_is_no_member(self):
        utils = generalutilities.create("StringUtils")
        self.assertIsNone(utils.ConvertStringToUnicode(99999, "x"))  # no answer
        self.assertIs(utils.ParseString(1, "word", 1033, 0)[2],
                      generalutilities.WordTypeEnum.qlnwtWord)
        utils.TTXIgnoreFonts = True
        self.assertTrue(utils.TTXIgnoreFonts)
        with self.assertRaises(AttributeError):
            utils.TTXIgnoreFont = True

    def test_collections_iterate_live(self):
        numbers = generalutilities.create("LongSet")
        for number in (5, 3, 9):
            numbers.Add(number)
        seen = []
        for number in numbers:
            seen.append(number)
            if number == 3:
                numbers.Add(7)
        self.assertEqual((seen, len(numbers), numbers[2], numbers.Item[4]), ([3, 5, 7, 9], 4, 5, 9))
        both = numbers.IntersectWith(numbers)
        self.assertEqual((type(both), list(both)), (type(numbers), seen))

    def test_an_object_without_type_information(self):
        plain = generalutilities.create("Scripting.Dictionary")
        plain.Add("a", 1)
        plain["b"] = "two"
        self.assertEqual((plain["a"], plain.Item("b"), plain.Count(), plain.Keys(), list(plain)),
                         (1, "two", 2, ["a", "b"], ["a", "b"]))

    def test_objects_go_when_python_no_longer_needs_them(self):
        can_unload = generalutilities.runtime.library.DllCanUnloadNow
        with generalutilities.create("LongSet") as numbers:
            numbers.Add(1)
            iter(numbers)
        helper = generalutilities.create("ExtViewHelper")
        helper.on("ExportProgress", print)
        self.assertEqual(can_unload(), 1)
        del helper, numbers
        gc.collect()
        self.assertEqual(can_unload(), 0)

    def test_threads_call_their_own_objects(self):
        wrong = []

        def work(number):
            utils = generalutilities.create("StringUtils")
            for i in range(300):
                text = f"straße {number} {i}"
                if utils.ToUpper(text) != text.replace("ß", "ss").upper():
                    wrong.append(text)
        threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])


if __name__ == "__main__":
    unittest.main()
