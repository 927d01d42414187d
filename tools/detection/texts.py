"""Real texts of many languages: the messages and help pages of Debian's packages.

The texts of a package are either learnt from or measured on, never both. A line that stands in the
catalogues of two languages belongs to neither: in many a catalogue untranslated messages are those
of a neighbour.
"""

import collections
import html
import pathlib
import re
import struct
import subprocess
import unicodedata

# Package: the catalogues in it that are used.
LEARNT = {
    "libgtk-3-common": ["gtk30", "gtk30-properties"],
    "libgtk-4-common": ["gtk40"],
    "libgtk2.0-common": ["gtk20", "gtk20-properties"],
    "libglib2.0-data": ["glib20"],
    "libgdk-pixbuf2.0-common": ["gdk-pixbuf"],
    "gimp-data": ["gimp20", "gimp20-std-plug-ins", "gimp20-script-fu", "gimp20-python"],
    "evolution-common": ["evolution"],
    "nautilus-data": ["nautilus"],
    "gnome-control-center-data": ["gnome-control-center-2.0"],
    "coreutils": ["coreutils"],
    "shared-mime-info": ["shared-mime-info"],
    "git": ["git"],
    "dpkg": ["dpkg"],
    "apt": ["apt"],
    "bash": ["bash"],
    "gettext": ["gettext-tools"],
}
MEASURED = {
    "vlc-l10n": ["vlc"],
    "inkscape": ["inkscape"],
    "epiphany-browser-data": ["epiphany"],
    "totem-common": ["totem"],
    "gedit-common": ["gedit"],
    "gucharmap": ["gucharmap"],
    "aptitude-common": ["aptitude"],
}
HELP = "gnome-user-docs"

# A language with less than this to learn from takes these two of the measured packages as well.
SCARCE = 60000
LENT = ("vlc", "inkscape")

# Languages that few texts are written in: where a short text may be of one of them or of a more
# usual one, it is of the latter.
RARE = {"af", "br", "bs", "ckb", "co", "cy", "fo", "ga", "gd", "gl", "ha", "ig", "ky", "mi", "nn",
        "nso", "oc", "ps", "sw", "tg", "tk", "tl", "tt", "uz@cyrillic", "xh", "yi", "yo", "zu"}

# Tag: language identifier, script, Windows code page (0 when there is none for it), and the names
# of its catalogues. A form behind "#" is another way to write the language: without the characters
# that its code page does not have.
LANGUAGES = {}


def _add(script, code_page, **lang_ids):
    for tag, lang_id in lang_ids.items():
        tag = tag.replace("__", "@")
        LANGUAGES[tag] = (lang_id, script, code_page, ["pt", "pt_BR"] if tag == "pt" else [tag])


_add("Latin", 1252, af=1078, br=1150, ca=1027, co=1155, cy=1106, da=1030, de=1031, en=1033, es=1034,
     eu=1069, fi=1035, fo=1080, fr=1036, ga=2108, gd=1169, gl=1110, id=1057, it=1040, ms=1086,
     nb=1044, nl=1043, nn=2068, nso=1132, oc=1154, pt=1046, sv=1053, sw=1089, tl=1124, xh=1076,
     zu=1077)
_add("Latin", 1252, **{"is": 1039})
_add("Latin", 1250, bs=5146, cs=1029, hr=1050, hu=1038, pl=1045, ro=1048, sk=1051, sl=1060, sq=1052,
     sr__latin=2074, tk=1090)
_add("Latin", 1257, et=1061, lt=1063, lv=1062)
_add("Latin", 1254, az=1068, tr=1055, uz=1091)
_add("Latin", 0, ha=1128, ig=1136, mi=1153, vi=1066, yo=1130)
_add("Cyrillic", 1251, be=1059, bg=1026, ky=1088, mk=1071, mn=1104, ru=1049, sr=3098, tt=1092,
     uk=1058)
_add("Cyrillic", 0, kk=1087, tg=1064, uz__cyrillic=2115)
_add("Greek", 1253, el=1032)
_add("Hebrew", 1255, he=1037, yi=1085)
_add("Arabic", 1256, ar=1025, fa=1065, ur=1056)
_add("Arabic", 0, ckb=1170, ps=1123, ug=1152)
_add("Thai", 874, th=1054)
_add("Armenian", 0, hy=1067)
_add("Georgian", 0, ka=1079)
_add("Devanagari", 0, hi=1081, mr=1102, ne=1121)
_add("Bengali", 0, bn=1093)
_add("Bengali", 0, **{"as": 1101})
_add("Gurmukhi", 0, pa=1094)
_add("Gujarati", 0, gu=1095)
_add("Oriya", 0, **{"or": 1096})
_add("Tamil", 0, ta=1097)
_add("Telugu", 0, te=1098)
_add("Kannada", 0, kn=1099)
_add("Malayalam", 0, ml=1100)
_add("Sinhala", 0, si=1115)
_add("Burmese", 0, my=1109)
_add("Khmer", 0, km=1107)
_add("Lao", 0, lo=1108)
_add("Ethiopic", 0, am=1118)
_add("Tibetan", 0, dz=2129)
_add("Han", 936, zh_CN=2052)
_add("Han", 950, zh_TW=1028)
_add("Han", 932, ja=1041)
_add("Hangul", 949, ko=1042)
for _tag, _page in (("vi", 1258), ("fa", 1256), ("ur", 1256)):
    LANGUAGES[f"{_tag}#{_page}"] = (*LANGUAGES[_tag][:2], _page, [_tag])

_TONES = "\u0300\u0301\u0303\u0309\u0323"


def in_form(tag, text):
    """The text as it is written in the code page that the tag names."""
    if tag.endswith("#1258"):
        return "".join(_with_tone_behind(c) for c in text)
    if tag.endswith("#1256"):
        if tag.startswith("fa"):
            text = text.replace("ہ", "ه")
        return text.replace("ی", "ي").replace("ۀ", "ه").replace("ۓ", "ے")
    return text


def _with_tone_behind(character):
    if can_encode(character, "cp1258"):
        return character
    parts = unicodedata.normalize("NFD", character)
    base = "".join(c for c in parts if c not in _TONES)
    return unicodedata.normalize("NFC", base) + "".join(c for c in parts if c in _TONES)


def can_encode(text, encoding):
    try:
        text.encode(encoding)
        return True
    except UnicodeEncodeError:
        return False


def fetch(folder):
    """Downloads and unpacks what is not in the folder yet."""
    folder.mkdir(parents=True, exist_ok=True)
    for package in [*LEARNT, *MEASURED, HELP]:
        root = folder / package
        if root.exists():
            continue
        subprocess.run(["apt-get", "download", "-q", package], cwd=folder, check=True)
        archive = next(folder.glob(f"{package}_*.deb"))
        subprocess.run(["dpkg-deb", "-x", archive, root], check=True)
        archive.unlink()


def _messages(path):
    """Pairs of an original and its translation in a compiled catalogue."""
    data = path.read_bytes()
    order = "<" if data[:4] == b"\xde\x12\x04\x95" else ">"
    count, originals, translations = struct.unpack(order + "3I", data[8:20])
    encoding = "utf-8"

    def entry(table, index):
        length, start = struct.unpack(order + "2I", data[table + 8 * index:][:8])
        return data[start:start + length].split(b"\0")[0]

    for index in range(count):
        original, translation = entry(originals, index), entry(translations, index)
        if not original:
            declared = re.search(rb"charset=([-\w]+)", translation)
            encoding = declared.group(1).decode() if declared else encoding
            continue
        try:
            yield original.split(b"\4")[-1].decode(), translation.decode(encoding)
        except UnicodeDecodeError:
            pass


_NO_TEXT = re.compile(r"<[^<>]*>|\\[a-z]|%\([^)]*\)[a-z]|%[-0-9.$*]*[a-zA-Z]*|\{[^{}]*\}|&[a-z]+;"
                      r"|[_&\\|]|https?:\S+|\S+@\S+")


def _clean(text):
    return re.sub(r"\s+", " ", _NO_TEXT.sub("", text)).strip()


class Texts:
    """learnt[tag] is a list of lines; measured[tag] a list by catalogue; prose[tag] one again."""

    def __init__(self, folder):
        self.learnt = collections.defaultdict(list)
        self.measured = collections.defaultdict(lambda: collections.defaultdict(list))
        self.prose = collections.defaultdict(list)
        self._seen = collections.defaultdict(set)
        for package, catalogs in LEARNT.items():
            for catalog in catalogs:
                self._read(folder / package, catalog, lambda tag: self.learnt[tag])
        for package, catalogs in MEASURED.items():
            for catalog in catalogs:
                self._read(folder / package, catalog, lambda tag, c=catalog: self.measured[tag][c])
        self._read_help(folder / HELP / "usr/share/help")
        self._drop_shared()

    def _take(self, tag, line, target):
        if len(line) >= 8 and line not in self._seen[tag]:
            self._seen[tag].add(line)
            target.append(line)

    def _read(self, root, catalog, target_of):
        for path in sorted(root.glob(f"usr/share/locale/*/LC_MESSAGES/{catalog}.mo")):
            tag = path.parts[-3]
            for original, translation in _messages(path):
                if "translator" in original.lower():
                    continue
                original, translation = _clean(original), _clean(translation)
                if tag == "de":
                    self._take("en", original, target_of("en"))
                if original != translation:
                    self._take(tag, translation, target_of(tag))

    def _read_help(self, root):
        """Paragraphs and titles of the pages that are translated; the originals come first."""
        originals = set()
        for folder in sorted(root.iterdir(), key=lambda f: (f.name != "C", f.name)):
            tag = "en" if folder.name == "C" else folder.name
            for page in sorted(folder.rglob("*.page")):
                text = re.sub(r"(?s)<info>.*?</info>", "", page.read_text("utf-8"))
                found = re.findall(r"(?s)<(p|title|item)\b[^>]*>(.*?)</\1>", text)
                lines = [(kind, _clean(html.unescape(re.sub(r"<[^>]*>", "", content))))
                         for kind, content in found]
                if tag == "en":
                    originals.update(line for _, line in lines)
                same = sum(line in originals for _, line in lines)
                translated = tag == "en" or same * 10 < len(lines)
                for kind, line in lines:
                    used = translated and kind != "item"  # what is in an item comes once more
                    self._take(tag, line, self.prose[tag] if used else [])

    def _drop_shared(self):
        languages = collections.defaultdict(set)
        for tag, lines in self._seen.items():
            for line in lines:
                if len(line) >= 15:
                    languages[line].add(tag if tag.startswith("sr") else re.split("[_@]", tag)[0])
        shared = {line for line, tags in languages.items() if len(tags) > 1}
        lists = [self.learnt, self.prose, *self.measured.values()]
        for by_name in lists:
            for name in by_name:
                by_name[name] = [line for line in by_name[name] if line not in shared]

    def to_learn(self, tag):
        lines = []
        for catalog in LANGUAGES[tag][3]:
            lines += self.learnt[catalog]
            if self._is_scarce(catalog):
                for lent in LENT:
                    lines += self.measured[catalog][lent]
        return [in_form(tag, line) for line in lines]

    def to_measure(self, tag):
        lines = []
        for catalog in LANGUAGES[tag][3]:
            for name, its in sorted(self.measured[catalog].items()):
                if not (name in LENT and self._is_scarce(catalog)):
                    lines += its
        return [in_form(tag, line) for line in lines]

    def help_to_measure(self, tag):
        return [in_form(tag, line) for name in LANGUAGES[tag][3] for line in self.prose[name]]

    def _is_scarce(self, catalog):
        return sum(map(len, self.learnt[catalog])) < SCARCE
