"""A client that misuses the library gets an error it can read, never a crash."""

import copy
import ctypes
import pickle
import unittest

import generalutilities
from generalutilities import ArgumentError, Error, ReleasedError, comparison, create


class Lying(dict):
    """A mapping whose parts do not fit each other."""

    def __init__(self, *entries, unreadable=False, unwritable=False):
        super().__init__(*entries)
        self.unreadable, self.unwritable = unreadable, unwritable

    def __getitem__(self, key):
        return super().__getitem__("elsewhere" if self.unreadable else key)

    def __setitem__(self, key, value):
        if self.unwritable:
            raise PermissionError("nothing is taken")
        super().__setitem__(key, value)


def released(name):
    made = create(name)
    made.release()
    made.release()
    return made


def closed(function):
    made = comparison(function)
    made.close()
    return made


def raise_in_the_middle(a, b):
    raise_in_the_middle.calls += 1
    if raise_in_the_middle.calls == 3:
        raise KeyError("in the callback")
    return -1


raise_in_the_middle.calls = 0


def release_in_own_call():
    utils = create("QLNSort")
    order = comparison(lambda a, b: utils.release() or 0)
    try:
        return utils.StringSort(["a", "b"], order)
    finally:
        utils.StringSort(["a"], order)


def endless():
    one = []
    one.append(one)
    create("qlnDictionary").Add(1, one)


def serialize(targets):
    create("StringUtils").SerializeCodes("a<b/>", targets, 0)


TABLE = [
    # what is done, the exception, words of its text
    (lambda: create("LongSet").Add("many"), ArgumentError, "LongSet.Add, argument Val: .*convert"),
    (lambda: create("LongSet").Add(2**31), ArgumentError, "argument Val"),
    (lambda: create("LongSet").Add(2**70), ArgumentError, "64 bits"),
    (lambda: create("LongSet").Add(object()), ArgumentError, "type object"),
    (lambda: create("LongSet").Add([1]), ArgumentError, "argument Val"),
    (lambda: create("LongSet").Add({}), ArgumentError, "type dict"),
    (lambda: create("StringUtils").EditDistance("a", "b", "cheap"), ArgumentError, "Penalty"),
    (lambda: create("LongSet").IntersectWith(create("LongStack")), ArgumentError, "OtherSet"),
    (lambda: create("LongSet").IntersectWith(None), Error, "0x80070057"),
    (lambda: create("StringUtils").Instr(1, "a", "a", "long"), ArgumentError, "MatchLength"),
    (lambda: create("StringUtils").ToUpper(), TypeError, "missing 1 required .*'s'"),
    (lambda: create("StringUtils").ToUpper("a", "b"), TypeError, "3 were given"),
    (lambda: create("StringUtils").ToUpper(t="a"), TypeError, "unexpected keyword"),
    (lambda: create("StringUtils").Shout("a"), AttributeError, "Shout"),
    (lambda: type(create("LongSet"))(3), TypeError, "takes no value"),
    (lambda: create("LongSet").Item(1), Error, "LongSet.Item"),
    (lambda: create("Scripting.Dictionary").Nothing(), AttributeError, "Nothing"),
    (lambda: create("Scripting.Dictionary").Add("a"), ArgumentError, "object.Add"),
    (lambda: iter(create("LongStack")), TypeError, "not iterable"),
    (endless, ArgumentError, "hold themselves"),
    (lambda: released("StringUtils").ToUpper("a"), ReleasedError, "StringUtils.ToUpper"),
    (lambda: released("LongSet").Count, ReleasedError, "released"),
    (lambda: iter(released("LongSet")), ReleasedError, "released"),
    (lambda: create("LongSet").IntersectWith(released("LongSet")), ReleasedError, "LongSet"),
    (lambda: released("ExtViewHelper").on("ExportProgress", print), ReleasedError, "ExtView"),
    (release_in_own_call, ReleasedError, "StringSort"),
    (lambda: copy.deepcopy(create("LongSet")), TypeError, "copied"),
    (lambda: pickle.dumps(create("LongSet")), TypeError, "copied"),
    (lambda: create("QLNSort").StringSort(list("dcba"), comparison(raise_in_the_middle)), KeyError,
     "in the callback"),
    (lambda: create("QLNSort").StringSort(["b", "a"], comparison(lambda a, b: "less")), TypeError,
     "'>'"),
    (lambda: create("QLNSort").StringSort(["b", "a"], closed(len)), ValueError, "closed"),
    (lambda: create("QLNSort").StringSort(["b", "a"], 77777), Error, "0x80070057"),
    (lambda: create("QLNSort").StringSort("ba", 0), ArgumentError, "list"),
    (lambda: create("QLNSort").StringSort(["b", {}], 0), ArgumentError, "pArray"),
    (lambda: create("QLNSort").Sort(b"ba", 1, 2, 0), ArgumentError, "can be written"),
    (lambda: create("QLNSort").Sort(12345, 1, 2, 0), ArgumentError, "can be written"),
    (lambda: create("QLNSort").Sort(bytearray(8), 4, 2, comparison(max)), ArgumentError, "memory"),
    (lambda: create("QLNSort").Sort(bytearray(8), 4, 3, 0), ArgumentError, "3 elements of 4 bytes"),
    (lambda: create("QLNSort").Sort(bytearray(8), 2**31, 2**31, 0), ArgumentError, "fit"),
    (lambda: create("UDrawText").DrawText(0, "x", (1, 2)), ArgumentError, "left, top, right, bot"),
    (lambda: create("UDrawText").DrawText(0, "x", bytearray(15)), ArgumentError, "15 bytes"),
    (lambda: create("UDrawText").DrawText(0, "x", (0, 0, 9, 2**40)), ArgumentError, "lpRect: .*great"),
    (lambda: create("QLNSort").Sort(bytearray(8), 4, 2, comparison(max, ctypes.c_int64)),
     ArgumentError, "4 bytes are no c_"),
    (lambda: comparison(5), TypeError, "can be called"),
    (lambda: comparison(max, int), TypeError, "size"),
    (lambda: create(5), TypeError, "name of its class"),
    (lambda: create("ExtViewHelper").on("Coffee", print), ValueError, "ExportProgress, Import"),
    (lambda: create("ExtViewHelper").on("ExportProgress", 5), TypeError, "called"),
    (lambda: create("LongSet").on("Added", print), ValueError, "none"),
    (lambda: create("ExtViewHelper").ImportExternalView(None, "x", 1036, 0, False), Error, "0x8007"),
    (lambda: serialize(None), Error, "StringUtils.1: No dictionary passed"),
    (lambda: serialize({"fr": 5}), Error, "not a string"),
    (lambda: serialize({"fr": None}), Error, "not a string"),
    (lambda: serialize(Lying({"fr": "x"}, unreadable=True)), KeyError, "elsewhere"),
    (lambda: serialize(Lying({"fr": "<b/>"}, unwritable=True)), PermissionError, "nothing"),
    (lambda: create("Teapot"), Error, "creating Teapot: no class has this name"),
    (lambda: generalutilities.Teapot, AttributeError, "Teapot"),
    (lambda: generalutilities.open_project("no such file"), Error, 'SQLite: .*"no such file"'),
    (lambda: generalutilities.open_project("a\0b"), ValueError, "zero unit"),
]


class Misuse(unittest.TestCase):
    def test_each_gives_an_error_that_can_be_read(self):
        for number, (act, error, words) in enumerate(TABLE):
            with self.subTest(row=number, words=words), self.assertRaisesRegex(error, words):
                act()
        self.assertEqual(create("StringUtils").ToUpper("fine"), "FINE")

    def test_an_error_tells_description_source_and_status(self):
        with self.assertRaises(Error) as caught:
            serialize(None)
        error = caught.exception
        self.assertEqual((error.description, error.source, error.status & 0xFFFFFFFF),
                         ("No dictionary passed", "GeneralUtilities.StringUtils.1", 0x80004005))


if __name__ == "__main__":
    unittest.main()
