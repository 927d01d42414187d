# Written by tools/generate_python_stubs.py from the library's type information; do not edit.
"""The classes and enumerations of the library, for type checkers and editors. Where a method gives a
negative answer instead of a result, it gives None."""

from collections.abc import Callable, Iterator
from enum import IntEnum
from typing import Generic, Literal, TypeVar, overload

from .late_binding import Object

_Key = TypeVar("_Key")
_Item = TypeVar("_Item")

class IndexedProperty(Generic[_Key, _Item]):
    """A property with an argument: `o.Item(key)` and `o.Item[key]` read, `o.Item[key] = x` writes."""
    def __call__(self, key: _Key) -> _Item: ...
    def __getitem__(self, key: _Key) -> _Item: ...
    def __setitem__(self, key: _Key, item: _Item) -> None: ...

class qlnCompareMethod(IntEnum):
    dctmBinaryCompare = 0
    dctmTextCompare = 1
    dctmDatabaseCompare = 2

class WordTypeEnum(IntEnum):
    qlnwtWord = 0
    qlnwtDigit = 1
    qlnwtSeparator = 2
    qlnwtDBCS = 3
    qlnwtCode = 4

class ITDErrorCode(IntEnum):
    itderrUnableToOpenFile = -2147221503
    itderrBadMagic = -2147221502
    itderrBadVersion = -2147221501
    itderrUnableToReadFile = -2147221500
    itderrUnableToAllocMem = -2147221499
    itderrUnableToAccessZip = -2147221498
    itderrWrongTextHeader = -2147221497
    itderrTextParsing = -2147221496

class EVErrorCode(IntEnum):
    everrInvalidQuery = -2147221472
    everrUnableToOpenFile = -2147221471
    everrNotEnoughFieldsPresent = -2147221470

class UDrawText(Object):
    """Draws and measures text on a device context, which travels as a handle."""
    def DrawText(self, hHDC: int, bstrText: str, lpRect: object) -> None: ...
    def GetTextHeight(self, hDC: int, bstrText: str, lWidth: int) -> int: ...
    def GetTextWidth(self, hDC: int, bstrText: str) -> int: ...

class LongSet(Object):
    """An ordered set of 32-bit integers. Created as `GeneralUtilities.LongSet.1`; may be
    aggregated. A null result pointer gives E_POINTER, but E_INVALIDARG from `_GetSet`."""
    def Add(self, Val: int) -> None:
        """A value that is there already changes nothing."""
    def Remove(self, Val: int) -> None:
        """A value that is not there is no error."""
    @property
    def Count(self) -> int: ...
    def __len__(self) -> int: ...
    @property
    def Item(self) -> IndexedProperty[int, int]:
        """The n-th smallest value, from 1; E_INVALIDARG below 1, E_FAIL above the count."""
    def __getitem__(self, key: int) -> int: ...
    def __iter__(self) -> Iterator[object]:
        """An `IEnumVARIANT` in ascending order over the live set: values that are added behind its
        position come up."""
    def IntersectWith(self, OtherSet: LongSet) -> LongSet:
        """A new set with the values of both. E_INVALIDARG for null and for a set of another
        implementation."""

class StringUtils(Object):
    """Text services that need no locale of the machine: folding, tokens, keys, search, distance,
    digits, code pages, languages. Created as `GeneralUtilities.StringUtils.1`. S_FALSE means that
    no answer could be given, not that something went wrong; the result then stays unwritten."""
    def SimplifyString(self, bstrIn: str, LCID: int) -> str:
        """Punctuation of all scripts made plain ASCII, one unit for one, up to the first U+0000."""
    def ConvertStringToUnicode(self, lCodePage: int, bstrIn: str, bTrueANSI: bool = False, bNoConversion: bool = False) -> str:
        """Decodes a byte string in code page `lCodePage`. With `bTrueANSI` the memory of `bstrIn`
        is the byte string, else with `bNoConversion` the low half of each unit is a byte, else the
        bytes are what `bstrIn` gives in code page 1252; a flag counts only as VARIANT_TRUE. The
        code pages 0, 1200 and 50000 give a copy up to the first U+0000. S_FALSE for a page that is
        not served and where nothing comes of the input, an empty string for example."""
    def DetectCodePage(self, bstrIn: str, lDefLangCodePage: int = 0) -> int:
        """The likeliest code page of the bytes that `bstrIn` gives in 1252; S_FALSE for no
        bytes."""
    def ConvertStringFromUnicode(self, lCodePage: int, bstrIn: str, bTrueANSI: bool = False, bNoConversion: bool = False) -> str:
        """Encodes `bstrIn` into a byte string in code page `lCodePage`, in one of the same three
        forms. What the page cannot hold becomes a question mark."""
    def GetLangNativeName(self, LangID: int) -> str:
        """The name of a language in that language, by its whole identifier. Null where none of the
        16 identifiers with the same upper bits has a name, and empty where only another one has."""
    def DetectLanguage(self, bstrIn: str) -> int:
        """The LANGID of the language that those bytes are written in; S_FALSE where none is
        found."""
    def GetStringCodePages(self, bstrAnalyze: str) -> list[int]:
        """The code pages of one script or language that carry the whole string, as VT_UI4 from
        index 0; no elements, and S_OK, where there are none."""
    def LoadUnicodeResString(self, hInstance: int, lID: int) -> str:
        """The text with number `lID` of a module's string table (automation/string_table.h), by the
        same rule. `hInstance` is HandleFromPointer of what dlopen gave; null for anything else."""
    def EditDistance(self, bstrS1: str, bstrS2: str, dCapitalizationPenalty: float = 1.0) -> float:
        """The least cost that makes one string of the other: 1.0 for each insertion, deletion and
        replacement, `dCapitalizationPenalty` for a change of case alone. Null counts as empty.
        E_OUTOFMEMORY when there is no memory for a few rows of numbers."""
    def DeAccentString(self, bstrIn: str) -> str:
        """Each code unit without its accents and compatibility forms; case stays."""
    def GenerateString(self, lScript: int, lLength: int) -> str:
        """`lLength` random code units of a script key (docs/code-pages.md); S_FALSE for an unknown
        key, null for a negative length. The sequence starts anew, from the time in seconds, with
        each `StringUtils` object that the thread creates."""
    def FoldDigits(self, bstrIn: str, fMapAllNumerals: bool = True) -> str:
        """The digits of all scripts as ASCII digits, up to the first U+0000; unless
        `fMapAllNumerals` is 0, every other numeral as "0". Null gives null."""
    def TranslateDigits(self, bstrIn: str, lLangID: int) -> str:
        """Does nothing: S_OK, and `pbstrRet` stays as it was."""
    def SerializeCodes(self, Source: str, dictTargets: object, EmbeddedID: int) -> tuple[str, int, list[int], list[str]]:
        """Moves the inline tags of a segment out into numbered markers (docs/inline-codes.md).
        `dictTargets` answers `IDictionary` (automation/dictionary.h) and holds the target texts.
        Source and items come back with markers, `EmbeddedID` as the last number given out, the
        arrays with the numbers and their tags, from index 0. E_FAIL, with words in the error
        object, for no dictionary, for one that fails or holds other things than texts, and for a
        text that cannot be scanned; before the first text is written nothing has changed."""
    def ToUpper(self, s: str) -> str:
        """Upper case; U+00DF becomes "SS"."""
    def ToLower(self, s: str) -> str:
        """Lower case; the length stays."""
    def IsStringInCodePage(self, bstrIn: str, cp: int) -> bool:
        """Whether the page carries every character up to the first U+0000, without approximation.
        True for a page that is not served."""
    @property
    def TTXIgnoreFonts(self) -> bool: ...
    @TTXIgnoreFonts.setter
    def TTXIgnoreFonts(self, value: bool) -> None:
        """Whether `SerializeCodes` leaves font tags out of the texts. True only for VARIANT_TRUE
        itself."""
    def ParseString(self, CharPos: int, String: str, LangID: int, wt: int) -> tuple[str, int, WordTypeEnum]:
        """The token at the 1-based position `CharPos` (0 counts as 1), its type, and the position
        of the next one. Past the end `pVal` is null, `CharPos` 0, and `wt` stays."""
    def Instr(self, start: int, s: str, tofind: str, MatchLength: int, bMatchCase: bool = False, bWholeWord: bool = False) -> tuple[int, int]:
        """The 1-based position of the first match of `tofind` at or behind `start`, and how many
        units of `s` it covers; 0 for none, `MatchLength` then stays. A `start` below 1 counts as 1.
        Any value but 0 turns a flag on. Always S_OK, and 0 where an argument is null."""
    def ToIndex(self, s: str, LangID: int, cIndexSize: int = 50) -> str:
        """The index key of `s`, at most `cIndexSize` units. E_INVALIDARG for a null `s` or `pVal`
        and for a size of 0."""
    def DeAccentUpperCaseString(self, pbstrIn: str) -> str:
        """Without accents and in upper case; `pbstrIn` points to the input."""

class LongStack(Object):
    """A stack of 32-bit integers that can be searched. Created as
    `GeneralUtilities.LongStack.1`."""
    def Push(self, lValue: int) -> None: ...
    def Pop(self) -> int:
        """The value on top, taken off or left there; E_FAIL, with nothing touched, when there is
        none."""
    def Peek(self) -> int: ...
    def Contains(self, lValue: int) -> bool: ...

class qlnDictionary(Object):
    """An associative array. Created as `GeneralUtilities.qlnDictionary.1`. Nothing that is missing
    or there already is an error: adding an existing key overwrites, reading a missing key creates
    it. What makes two keys the same and which order they have is told in docs/collections.md. Keys
    and items are copied in and out; a value by reference counts as the value it refers to."""
    def Add(self, Key: object, Item: object) -> None: ...
    @property
    def CompareMode(self) -> qlnCompareMethod:
        """Always `dctmBinaryCompare`; setting it changes nothing."""
    @CompareMode.setter
    def CompareMode(self, value: qlnCompareMethod) -> None: ...
    @property
    def Count(self) -> int: ...
    def __len__(self) -> int: ...
    def Exists(self, Key: object) -> bool: ...
    @property
    def Item(self) -> IndexedProperty[object, object]:
        """The item of a key. A missing key is added, with an empty item."""
    def Items(self) -> object:
        """All items, and all keys in the same order: an array of VARIANT with lower bound 1."""
    @property
    def Key(self) -> IndexedProperty[object, object]:
        """A copy of `Key` itself, whether it is there or not."""
    def Keys(self) -> object: ...
    def Remove(self, Key: object) -> None: ...
    def RemoveAll(self) -> None: ...

class CodePageHelper(Object):
    """Wraps the runs of a text that leave the first code page in font tags of one that carries them
    (docs/inline-codes.md)."""
    def AddCodePage(self, CodePage: int, FontDef: str) -> None:
        """Appends a code page. `FontDef` is what stands in its font tag behind "<df "; neither is
        looked at. A page that is not served carries everything."""
    def ResetCodePages(self) -> None: ...
    def AddFonts(self, s: str) -> str:
        """A text whose tags cannot be scanned comes back unchanged, and so does any text while
        there are no code pages."""

class QLNSort(Object):
    """Sorts the caller's arrays in place with the caller's comparison function, which is a handle
    of `HandleFromPointer` for an `int32_t (*)(const void*, const void*)`: negative when the first
    element sorts first (collections/sort.h). Created as `GeneralUtilities.QLNSort.1`. Handle 0
    gives S_FALSE and does nothing, an unknown one E_INVALIDARG. Running out of memory leaves all
    elements in the array, in some order."""
    def Sort(self, pArray: object, lEleSize: int, lEleCount: int, pCompFunc: int) -> None:
        """Sorts `lEleCount` elements of `lEleSize` bytes; none for a count of 0 or less."""
    def StringSort(self, pArray: list[str], pCompFunc: int) -> list[str]:
        """Sorts the first dimension of an array of strings. The function gets the addresses of two
        BSTRs. The array is locked meanwhile."""

class ExtViewHelper(Object):
    """The external view: a project's rows go out to a reviewer's file, and a reviewed file comes
    back into the working table `Reimporting`. Created as `GeneralUtilities.ExtViewHelper.1`; its
    events go to sinks connected to the connection point `_IExtViewHelperEvents`. `Project` answers
    to `IProjectDatabase`. Options are the bits of `extview/export_options.h`, and colours are
    0x00BBGGRR. A null project, an empty path or a project without a database gives E_INVALIDARG; a
    failure with words leaves an error object and one of the `EVErrorCode` values."""
    def ExportExternalView(self, Project: object, Destination: str, FileID: int, TargetLangID: int, ExportOptions: int, LexiconOrderByClause: str, ColorForGuaranteed: int, ColorForExact: int, ColorForFuzzy: int, ColorForAssembled: int, ColorForPropagated: int, ColorForAutoPropagated: int, ColorForLocked: int, ColorForPending: int, ColorForMachineTranslated: int) -> None: ...
    @property
    def SourceFont(self) -> str: ...
    @SourceFont.setter
    def SourceFont(self, value: str) -> None: ...
    @property
    def TargetFont(self) -> str: ...
    @TargetFont.setter
    def TargetFont(self, value: str) -> None: ...
    def ImportExternalView(self, Project: object, SourceFile: str, TargetLangID: int, ExportOptions: int, ForceReimport: bool) -> None:
        """Reads a reviewed file into `Reimporting`; `Pairs` stays as it is. `ForceReimport` has no
        effect."""
    def IsFileRTF(self, SourceFile: str) -> bool:
        """Whether the file starts with "{\\rtf1"."""
    def IsFileTWB(self, SourceFile: str) -> bool:
        """Whether the file is a bilingual document as the format TWB has it."""
    def on(self, event: Literal["ExportProgress", "ImportProgress"], function: Callable[[int, int], object]) -> None: ...
    def off(self, event: Literal["ExportProgress", "ImportProgress"], function: Callable[[int, int], object]) -> None: ...

class ITDReader(Object):
    """Walks an ITD document segment by segment."""
    def OpenITDFile(self, fileName: str) -> None: ...
    def CloseFile(self) -> None: ...
    @property
    def SourceLanguage(self) -> str: ...
    @property
    def TargetLanguage(self) -> str: ...
    @property
    def SourceText(self) -> str: ...
    @property
    def TargetText(self) -> str: ...
    @property
    def SourceCode(self) -> IndexedProperty[int, str]: ...
    @property
    def SourceCodeCount(self) -> int: ...
    @property
    def TargetCode(self) -> IndexedProperty[int, str]: ...
    @property
    def TargetCodeCount(self) -> int: ...
    @property
    def Untranslatable(self) -> str: ...
    @property
    def More(self) -> bool: ...
    def Next(self) -> bool: ...
    def Restart(self) -> None: ...
    @property
    def EmbeddedCodeID(self) -> int: ...
    @EmbeddedCodeID.setter
    def EmbeddedCodeID(self, value: int) -> None: ...
    @property
    def SegmentCount(self) -> int: ...
    def GetLangsOnly(self, fileName: str) -> tuple[str, str]: ...
    @property
    def BinaryHeader(self) -> str: ...
    @property
    def BinaryFooter(self) -> str: ...
    @property
    def ExtraInfo(self) -> IndexedProperty[int, str]: ...
    @property
    def ExtraInfoCount(self) -> int: ...
    def ReverseLanguages(self) -> None: ...
    @property
    def Comment(self) -> str: ...
    @property
    def Status(self) -> int: ...
    @property
    def Score(self) -> float: ...

class ITDWriter(Object):
    """Writes translated segments into a copy of a reference ITD document."""
    def OpenReferenceITD(self, fileName: str) -> None: ...
    def CloseFile(self) -> None: ...
    def WriteToFile(self, fileName: str) -> None: ...
    @property
    def SourceLanguage(self) -> str: ...
    @property
    def TargetLanguage(self) -> str: ...
    @TargetLanguage.setter
    def TargetLanguage(self, value: str) -> None: ...
    SourceText: str  # can be written only
    TargetText: str  # can be written only
    def AddSourceCode(self, ID: int, newVal: str) -> None: ...
    def AddTargetCode(self, ID: int, newVal: str) -> None: ...
    CodeBeforeSegment: str  # can be written only
    CodeAfterSegment: str  # can be written only
    def Next(self) -> None: ...
    @property
    def SegmentCount(self) -> int: ...
    def ReverseLanguages(self) -> None: ...

@overload
def create(name: Literal["UDrawText"]) -> UDrawText: ...

@overload
def create(name: Literal["LongSet"]) -> LongSet: ...

@overload
def create(name: Literal["StringUtils"]) -> StringUtils: ...

@overload
def create(name: Literal["LongStack"]) -> LongStack: ...

@overload
def create(name: Literal["qlnDictionary"]) -> qlnDictionary: ...

@overload
def create(name: Literal["CodePageHelper"]) -> CodePageHelper: ...

@overload
def create(name: Literal["QLNSort"]) -> QLNSort: ...

@overload
def create(name: Literal["ExtViewHelper"]) -> ExtViewHelper: ...

@overload
def create(name: Literal["ITDReader"]) -> ITDReader: ...

@overload
def create(name: Literal["ITDWriter"]) -> ITDWriter: ...

@overload
def create(name: str) -> Object: ...
