#!/usr/bin/env python3
"""Makes the first inputs of the fuzz targets, with other programs than the ones under test.

usage: makeSeeds.py FOLDER LRELEASE
"""

import datetime
import io
import pathlib
import plistlib
import shutil
import subprocess
import sys
import tempfile
import warnings
import zipfile

folder = pathlib.Path(sys.argv[1])
lrelease = sys.argv[2]


def seed(target, name, content):
    path = folder / target / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content.encode() if isinstance(content, str) else content)


# Archives: entries are a name, a content, and a Unix mode or none.


def archive(entries, method=zipfile.ZIP_DEFLATED, comment=b""):
    result = io.BytesIO()
    with zipfile.ZipFile(result, "w", method) as file:
        file.comment = comment
        for name, content, mode in entries:
            info = zipfile.ZipInfo(name, (2024, 2, 29, 12, 30, 58))
            info.compress_type = method
            if mode:
                info.create_system = 3
                info.external_attr = mode << 16
            file.writestr(info, content)
    return result.getvalue()


def streamed_archive():
    """Sizes and check sum stand behind the data."""

    class Stream(io.RawIOBase):
        content = b""

        def writable(self):
            return True

        def write(self, data):
            Stream.content += bytes(data)
            return len(data)

    with zipfile.ZipFile(Stream(), "w", zipfile.ZIP_DEFLATED) as file:
        file.writestr("streamed.txt", "one after the other " * 20)
    return Stream.content


def zipped_by_info_zip():
    with tempfile.TemporaryDirectory() as place:
        tree = pathlib.Path(place, "tree")
        (tree / "folder" / "empty").mkdir(parents=True)
        (tree / "picture.txt").write_text("a picture, more or less\n" * 8)
        (tree / "folder" / "läng.txt").write_text("Länge")
        (tree / "link").symlink_to("folder")
        subprocess.run(["zip", "-q", "-r", "-y", "../all.zip", "."], cwd=tree, check=True)
        return pathlib.Path(place, "all.zip").read_bytes()


warnings.simplefilter("ignore")  # two entries of one name are meant
text = "Vek " * 64
archives = {
    "one": archive([("one.txt", text, 0o100644)]),
    "stored": archive([("a", "a", 0), ("b", "", 0)], zipfile.ZIP_STORED),
    "bzip2": archive([("b.txt", text, 0o100600)], zipfile.ZIP_BZIP2),
    "lzma": archive([("l.txt", text, 0o100600)], zipfile.ZIP_LZMA),
    "folders": archive([("d/", "", 0o40755), ("d/e/", "", 0o40500), ("d/e/f", text, 0o100400)]),
    "links": archive([("d/a", "A", 0o100644), ("l", "d/a", 0o120777), ("d/up", "../l", 0o120777)]),
    "link-out": archive([("l", "../outside", 0o120777)]),
    "absolute-link": archive([("l", "/etc/passwd", 0o120777)]),
    "below-link": archive([("l", ".", 0o120777), ("l/x", "x", 0o100644)]),
    "up": archive([("../outside", "no", 0), ("a/../../outside", "no", 0)]),
    "absolute": archive([("/tmp/absolute", "no", 0)]),
    "same-name": archive([("a", "1", 0), ("a", "2", 0), ("A", "3", 0)]),
    "umlaut": archive([("ä/日本.txt", text, 0)]),
    "zeros": archive([("zeros", bytes(200000), 0)]),
    "comment": archive([("a", "a", 0)], comment=b"a comment PK\5\6"),
    "colons": archive([(":/a", "a", 0), ("qrc:b", "b", 0), ("c:d", "c", 0)]),
    "backslash": archive([("a\\b", "a", 0), ("..\\outside", "no", 0)]),
    "empty": archive([]),
    "streamed": streamed_archive(),
}
if shutil.which("zip"):
    archives["info-zip"] = zipped_by_info_zip()
for name, content in archives.items():
    seed("FuzzArchive", name + ".zip", content)

# Command lines.

for name, content in {
    "two": "--open\n/home/a b/picture.jpg\n",
    "empty-lines": "\na\n\n\nb",
    "returns": "a\r\nb\r\n",
    "umlauts": "Bücher\n日本語\n😀\n\ufeff\n\uffff",
    "byte-order-mark": b"\xef\xbb\xbfa\nb",
    "latin-1": b"B\xfccher\n",
    "zero": b"a\0b\n\0c\n",
    "surrogate": b"\xed\xa0\x80\n",
    "overlong": b"\xc0\xaf\n\xe0\x80\x80",
    "truncated": b"a\n\xf0\x9f\x98",
    "too-high": b"\xf4\x90\x80\x80",
    "empty": b"",
}.items():
    seed("FuzzArgumentsFile", name, content)

# Property lists.

bundle = {
    "CFBundleIdentifier": "com.vek.krnv3.standalone",
    "CFBundleName": "Vek Marlowick 3",
    "CFBundleVersion": "3.1.251.0",
}
everything = dict(
    bundle,
    a="ä & <b> \"c\" 日本語",
    numbers=[0, -1, 255, 2**40, 1.5, True, False],
    data=bytes(range(64)),
    date=datetime.datetime(2024, 2, 29, 12, 30, 58),
    nested={"one": [{"two": [[], {}]}]},
)
for name, content in {"bundle": bundle, "everything": everything, "array": ["a", "b"]}.items():
    seed("FuzzPropertyList", name + ".xml", plistlib.dumps(content, fmt=plistlib.FMT_XML))
    seed("FuzzPropertyList", name + ".bin", plistlib.dumps(content, fmt=plistlib.FMT_BINARY))
seed("FuzzPropertyList", "uid.bin", plistlib.dumps({"a": plistlib.UID(7)}, fmt=plistlib.FMT_BINARY))
xml = "<plist><dict><key>a</key>%s</dict></plist>"
for name, content in {
    "entities": xml % "<string>&lt;&amp;&#65;&#x42;&quot;&apos;&gt;</string>",
    "cdata": xml % "<string><![CDATA[<a>]]> and ]]&gt;</string>",
    "comment": "<!-- a --><?pi?>" + xml % "<!-- b --><string/>",
    "deep": xml % ("<array>" * 60 + "</array>" * 60),
    "byte-order-mark": "\ufeff" + xml % "<string>b</string>",
    "doctype": '<!DOCTYPE plist [<!ENTITY a "b">]>' + xml % "<string>&a;</string>",
    "older": '{ a = "b \\U00e4"; "c d" = (1, <0a0b>, { e = f; }); }',
    "json": '{"a":"b","c":[1,2.5,true,null,{"d":"\\u00e4"}]}',
    "empty": "",
}.items():
    seed("FuzzPropertyList", name, content)

# Settings.

for name, content in {
    "plain": """[General]
VekAppLanguage=1033
app_launchMode=standalone
MainWindowGeometry=@ByteArray(\\x1\\xd9\\xd0\\xcb\\0\\x3\\0\\0)

[recent]
files\\1\\path=/home/a b/picture.jpg
files\\2\\path="/home/c;d, e.jpg"
files\\size=2
""",
    "types": """[values]
boolean=true
bytes=@ByteArray(a\\0b)
invalid=@Invalid()
list=a, "b, c", d
empty=@Invalid()
number=-12.5
point=@Point(1 -2)
rectangle=@Rect(1 2 3 4)
size=@Size(640 480)
at=@@home
text="with \\"quotes\\" and ; and \\x4e9\\n"
""",
    "streamed": """[General]
bits=@Variant(\\0\\0\\0\\r\\0\\0\\0\\v\\b\\0)
date=@Variant(\\0\\0\\0\\xe\\0%\\x84\\xe2)
float=@Variant(\\0\\0\\0\\x87@ \\0\\0)
hash=@Variant(\\0\\0\\0\\x1c\\0\\0\\0\\x1\\0\\0\\0\\x2\\0\\x61\\0\\0\\0\\x2\\0\\0\\0\\x1)
list=1, @Variant(\\0\\0\\0\\t\\0\\0\\0\\x1\\0\\0\\0\\x2\\0\\0\\0\\x1), "a, b"
polygon=@Variant(\\0\\0\\0G\\0\\0\\0\\x1\\0\\0\\0\\x1\\0\\0\\0\\x2)
[times]
local=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x85\\x3\\0\\xe0\\x65P\\0)
offset=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x85\\x3\\0\\xe0\\x65P\\x2\\0\\0\\xe\\x10)
zone=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x85\\x3\\0\\xe0\\x65P\\x3\\0\\0\\0\\x6\\0U\\0T\\0\\x43)
""",
    "no-section": "a=1\nb/c=2\n",
    "escaped-keys": "[a%20b]\nc%2Fd=1\n%U65E5%U672C=2\n",
    "comments": "; a comment\n[General]\n;b=1\nc=2 ; not a comment?\n\n\n",
    "continued": "[General]\na=b\\\n  c\nd=\"e\\\nf\"\n",
    "broken": "[General\na\n=b\n]c=\nd==e\n[]\n[%]\n%=%\n",
    "byte-order-mark": "\ufeff[General]\na=1\n",
    "latin-1": b"[General]\na=\xe4\n\xe4=b\n",
    "returns": "[General]\r\na=1\r\n[b]\r\nc=2\r\n",
    "empty": "",
}.items():
    seed("FuzzSettings", name + ".ini", content)

# Replies of SOAP servers.

namespaces = (
    ' xmlns:E="http://schemas.xmlsoap.org/soap/envelope/"'
    ' xmlns:C="http://schemas.xmlsoap.org/soap/encoding/"'
    ' xmlns:d="http://www.w3.org/2001/XMLSchema"'
    ' xmlns:i="http://www.w3.org/2001/XMLSchema-instance"'
)


def envelope(body, header=""):
    return (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        f"<E:Envelope{namespaces}>{header}<E:Body>{body}</E:Body></E:Envelope>\n"
    )


def answer(value):
    return envelope(f'<m:answer xmlns:m="urn:m">{value}</m:answer>')


fault = "<E:Fault><faultcode>E:%s</faultcode><faultstring>No</faultstring>%s</E:Fault>"
simple = "".join(
    f'<v i:type="d:{kind}">{value}</v>'
    for kind, value in {
        "string": " a &amp; b ",
        "boolean": "true",
        "int": "-12",
        "unsignedLong": "18446744073709551615",
        "double": "1.5e3",
        "decimal": "0.10",
        "dateTime": "2024-02-29T12:30:58.5Z",
        "date": "2024-02-29+01:00",
        "time": "12:30:58",
        "duration": "P1Y2M3DT4H5M6.7S",
        "gYearMonth": "2024-02",
        "base64Binary": "VmVr",
        "hexBinary": "0aFF",
        "QName": "d:int",
        "anyURI": "urn:x",
        "NMTOKENS": "a b",
    }.items()
)
for name, content in {
    "simple": answer(simple),
    "empty": answer(""),
    "null": answer('<v i:nil="true"/><w i:null="1"/>'),
    "struct": answer("<s><a>1</a><b><c>2</c></b>text<a>3</a></s>"),
    "array": answer(
        '<a i:type="C:Array" C:arrayType="d:int[3]"><i>1</i><i>2</i><i>3</i></a>'
    ),
    "sparse-array": answer(
        '<a C:arrayType="d:string[2,3]" C:offset="[0,1]"><i>1</i><i C:position="[1,2]">2</i></a>'
    ),
    "array-of-arrays": answer(
        '<a C:arrayType="d:int[][2]"><i C:arrayType="d:int[1]"><j>1</j></i><i i:nil="1"/></a>'
    ),
    "references": envelope(
        '<m:answer xmlns:m="urn:m"><a href="#1"/><b href="#1"/><c href="#2"/></m:answer>'
        '<x id="1" C:root="0">v</x><y id="2"><z href="#2"/></y>'
    ),
    "fault": envelope(fault % ("Client.Authentication", "<detail><e:d xmlns:e='urn:e'/></detail>")),
    "must-understand": envelope(
        "<a/>", '<E:Header><h:t xmlns:h="urn:h" E:mustUnderstand="1">1</h:t></E:Header>'
    ),
    "header": envelope("<a/>", '<E:Header><h:t xmlns:h="urn:h">1</h:t></E:Header>'),
    "other-version": envelope("").replace("schemas.xmlsoap.org/soap", "www.w3.org/2003/05"),
    "cdata": answer("<v><![CDATA[<a>&]]></v><!-- c --><?p i?>"),
    "doctype": '<!DOCTYPE a [<!ENTITY b "c">]>' + answer("<v>&b;</v>")[39:],
    "utf-16": answer("<v>日本語</v>").replace("UTF-8", "UTF-16").encode("utf-16"),
    "latin-1": answer("<v>ä</v>").replace("UTF-8", "ISO-8859-1").encode("latin-1"),
    "not-well-formed": answer("<v>")[:-9],
    "nothing": "",
}.items():
    seed("FuzzSoapMessage", name + ".xml", content)

# Catalogues of messages.


def catalogue(messages, options=(), head=""):
    contexts = "".join(
        f"<context><name>{context}</name><message{attributes}><source>{source}</source>"
        f"{extra}</message></context>\n"
        for context, attributes, source, extra in messages
    )
    with tempfile.TemporaryDirectory() as place:
        source = pathlib.Path(place, "source.ts")
        source.write_text(
            '<?xml version="1.0" encoding="utf-8"?>\n<!DOCTYPE TS>\n'
            f'<TS version="2.1" language="it_IT">\n{head}{contexts}</TS>\n',
            "utf-8",
        )
        result = pathlib.Path(place, "result.qm")
        subprocess.run([lrelease, "-silent", *options, source, "-qm", result], check=True)
        return result.read_bytes()


def translation(text):
    return f"<translation>{text}</translation>"


language = [
    ("CLanguageManager", "", "language name", translation("Italiano")),
    ("CLanguageManager", "", "language number", translation("1040")),
]
window = [
    ("Window", "", "Open", "<comment>menu</comment>" + translation("Apri")),
    ("QPlatformTheme", "", "Cancel", translation("Annulla")),
    (
        "Window",
        ' numerus="yes"',
        "%n picture(s)",
        "<translation><numerusform>%n immagine</numerusform>"
        "<numerusform>%n immagini</numerusform></translation>",
    ),
]
seed("FuzzTranslation", "language.qm", catalogue(language))
seed("FuzzTranslation", "full.qm", catalogue(language + window))
seed("FuzzTranslation", "compressed.qm", catalogue(language + window, ["-compress"]))
seed("FuzzTranslation", "plain-text.qm", catalogue(language + window, ["-removeidentical"]))
seed("FuzzTranslation", "other.qm", catalogue(window))
for other in "qt_it", "missing":
    depends = f'<dependencies><dependency catalog="{other}"/></dependencies>'
    seed("FuzzTranslation", f"depends-on-{other}.qm", catalogue(language, head=depends))
seed("FuzzTranslation", "no-messages.qm", catalogue([]))
seed("FuzzTranslation", "not-a-catalogue.qm", "nothing")
