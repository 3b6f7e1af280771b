"""Pretty-printers for the types of libcrossutil: docs/debugging.md tells how gdb finds this file.

They read memory and call nothing in the program, so they serve for core dumps too. What stands in an object is not believed:
pointers may be wild and counts absurd, and then a printer says so instead of failing. Types that the library keeps to its
sources are read by their layout, so that a library without debug information will do; tests/debugger notices when one changes.
"""

import itertools
import struct

import gdb
import gdb.printing

UNREADABLE = "<not readable>"
MOST_TEXT = 2047  # characters of a text; more are cut
MOST_BYTES = 1 << 28  # more in one piece is no size but damage
MOST_ELEMENTS = 200  # of an array member
DEEPEST = 64  # tables within tables


class Damage(Exception):
    """An object holds what cannot be true."""


FAULTS = (Damage, gdb.error, struct.error, OverflowError, TypeError)  # the last is int(None), of what lies in no memory


class Printer:
    """What all printers share: summary() tells an object in a line, items() its parts, and neither need mind what fails."""

    def __init__(self, value):
        self.value = value
        self.is_readable = True

    def to_string(self):
        try:
            return self.summary()
        except FAULTS:
            self.is_readable = False
            return UNREADABLE

    def children(self):
        """Ends with the first part that cannot be read."""
        if not self.is_readable:
            return
        try:
            yield from self.items()
        except FAULTS:
            yield "...", UNREADABLE

    def items(self):
        return ()


# -- Memory

def read(address, size):
    if not 0 <= size <= MOST_BYTES:
        raise Damage
    return bytes(gdb.selected_inferior().read_memory(address, size)) if size else b""


def unpack(form, address):
    return struct.unpack("<" + form, read(address, struct.calcsize("<" + form)))


def count_between(first, last, size):
    """Elements of that many bytes between two addresses."""
    count, rest = divmod(last - first, size)
    if rest != 0 or not 0 <= last - first <= MOST_BYTES:
        raise Damage
    return count


def pointee(pointer):
    return pointer.type.strip_typedefs().target()


def elements_of(vector):
    """Address and count of the elements of a std::vector."""
    body = vector["_M_impl"]
    first = body["_M_start"]
    return first, count_between(int(first), int(body["_M_finish"]), pointee(first).sizeof)


def map_of(ordered):
    """Keys and values of a std::map, in order."""
    kind = ordered.type.strip_typedefs()
    key, mapped = (kind.template_argument(i).strip_typedefs() for i in range(2))
    tree = ordered["_M_t"]["_M_impl"]
    node = int(tree["_M_header"]["_M_left"])
    for _ in range(min(int(tree["_M_node_count"]), MOST_BYTES // Links.SIZE)):
        item = node + Links.SIZE
        yield value_at(item, key), value_at(item + key.sizeof, mapped)
        node = Links(node).following()


class Links:
    """The head of a node of a std::map: colour, parent, left and right."""

    SIZE = 32

    def __init__(self, node):
        self.node = node
        _, self.parent, self.left, self.right = unpack("QQQQ", node)

    def following(self):
        here = self
        if here.right != 0:
            return Links.leftmost(here.right)
        for _ in range(DEEPEST):
            above = Links(here.parent)
            if above.right != here.node:
                return above.node
            here = above
        raise Damage

    @staticmethod
    def leftmost(node):
        for _ in range(DEEPEST):
            left = Links(node).left
            if left == 0:
                return node
            node = left
        raise Damage


def value_at(address, kind):
    return gdb.Value(address).cast(kind.pointer()).dereference()


# -- Texts and numbers, as gdb writes them

ESCAPES = {'"': '\\"', "\\": "\\\\", "\n": "\\n", "\r": "\\r", "\t": "\\t"}


def escaped(text):
    """For places where quotes would be noise."""
    if isinstance(text, bytes):
        text = text.decode("utf-8", "backslashreplace")
    shown = "".join(ESCAPES.get(c) or (c if c.isprintable() else "\\u%04x" % ord(c)) for c in text[:MOST_TEXT])
    charset = gdb.host_charset()
    return shown.encode(charset, "backslashreplace").decode(charset) + "..." * (len(text) > MOST_TEXT)


def quoted(text):
    return '"%s"' % escaped(text)


def quoted_wide(units):
    return "u" + quoted(units.decode("utf-16-le", "replace"))


def text_at(address):
    """The text up to its NUL, in small steps, since the page behind it may not be there."""
    text = b""
    while b"\0" not in text and len(text) <= MOST_TEXT:
        text += read(address + len(text), 256 - (address + len(text)) % 256)
    return text.partition(b"\0")[0]


def string_of(text):
    """The bytes of a std::basic_string, whatever its character and allocator."""
    start = text["_M_dataplus"]["_M_p"]
    return read(int(start), int(text["_M_string_length"]) * pointee(start).sizeof)


def shown_float(number):
    """The shortest text that reads back as the same 32 bits."""
    bits = struct.pack("<f", number)
    texts = ("%.*g" % (digits, number) for digits in range(6, 10))
    text = next((t for t in texts if struct.pack("<f", float(t)) == bits), repr(number))
    return text if any(c in text for c in ".en") else text + ".0"


def shown_bool(byte):
    return {0: "false", 1: "true"}.get(byte, "<bool of %d>" % byte)


def counted(count, noun):
    return "%d %s%s" % (count, noun, "" if count == 1 else "s")


def braced(texts):
    return "{%s}" % ", ".join(texts)


# -- Names

class Names:
    """Where the texts of dictionaries are, by key; read once for each time the program stands still."""

    # Expressions for the addresses of dictionaries. They need no debug information.
    PROCESS = "*(unsigned long *)&'Dictionary::Instance()::dictionary'"
    OF_NUMBERS = "(unsigned long)&'KeyValueContainer::s_fDictionary'"
    OF_TEXTS = "(unsigned long)&'KeyValueContainer::s_sDictionary'"

    def __init__(self):
        self.known = {}
        events = gdb.events
        for event in (events.cont, events.inferior_call, events.memory_changed, events.new_objfile, events.exited):
            event.connect(lambda _: self.known.clear())

    def find(self, key, dictionary):
        """The text of a key, None where there is none."""
        try:
            return text_at(self.places(dictionary)[key])
        except (KeyError, *FAULTS):
            return None

    def places(self, dictionary):
        place = gdb.selected_inferior().num, dictionary
        if place not in self.known:
            address = int(gdb.parse_and_eval(dictionary))
            self.known[place] = dict(names_in(address)) if address else {}
        return self.known[place]


def names_in(dictionary):
    """Key and address of the text for all names of the Dictionary at that address, in the order of storing. It begins with a
    pointer to its entries, and those with a vector of the names: text, key and hash."""
    first, last = unpack("QQ", unpack("Q", dictionary)[0])
    size = struct.calcsize("<QII")
    for text, key, _ in struct.iter_unpack("<QII", read(first, count_between(first, last, size) * size)):
        yield key, text


NAMES = Names()


def shown_key(key):
    text = NAMES.find(key, Names.PROCESS)
    return "0x%08x" % key if text is None else quoted(text)


def bare_key(key, dictionary=Names.PROCESS):
    """The name of a part of an object."""
    text = NAMES.find(key, dictionary)
    return "0x%08x" % key if text is None else escaped(text)


class KeyPrinter(Printer):
    def summary(self):
        return shown_key(int(self.value["value"]))


class DcaKeyPrinter(Printer):
    def summary(self):
        return shown_key(int(self.value["key"]["value"]))


class DictionaryPrinter(Printer):
    def summary(self):
        return "Dictionary of " + counted(sum(1 for _ in self.names()), "text")

    def items(self):
        for key, text in self.names():
            yield "0x%08x" % key, quoted(text_at(text))

    def names(self):
        return names_in(int(self.value.address))


# -- Attribute tables

class TablePrinter(Printer):
    """The whole image from its root, wherever the cursor stands. The fields of an inner table follow it."""

    TABLES = {100: "table of ", 101: "unsorted table of "}

    def summary(self):
        image = self.image()
        if not image:
            return "BinaryConfig without an image"
        name = quoted(text_at(int(self.value["filename"]["characters"].address)))
        return "BinaryConfig %s, %s, %s, CRC 0x%08x" % (name, self.field_count(image, 0),
                                                        counted(len(image), "byte"), int(self.value["crc"]))

    def items(self):
        image = self.image()
        if image:
            yield from self.fields(image, 0, [])

    def image(self):
        address = int(self.value["data"]["array"])
        return read(address, int(self.value["dataSize"])) if address else b""

    def fields(self, image, table, path):
        count = self.word(image, table)
        values = table + 4 + 12 * count
        for place in range(table + 4, values, 12):
            key, kind, offset = struct.unpack_from("<III", image, place)
            name = path + [bare_key(key)]
            yield "/".join(name), self.shown(image, kind, values + offset)
            if kind in self.TABLES:
                if len(path) == DEEPEST:
                    raise Damage
                yield from self.fields(image, values + offset, name)

    def shown(self, image, kind, place):
        if kind in self.TABLES:
            return self.TABLES[kind] + self.field_count(image, place)
        show = {0: self.number, 1: self.integer, 2: self.boolean, 3: self.text, 4: self.wide_text}.get(kind)
        return show(image, place) if show else "<unknown type %d>" % kind

    @staticmethod
    def word(image, place):
        return struct.unpack_from("<I", image, place)[0]

    @classmethod
    def field_count(cls, image, table):
        return counted(cls.word(image, table), "field")

    @staticmethod
    def number(image, place):
        return shown_float(struct.unpack_from("<f", image, place)[0])

    @staticmethod
    def integer(image, place):
        return str(struct.unpack_from("<i", image, place)[0])

    @staticmethod
    def boolean(image, place):
        return shown_bool(struct.unpack_from("<B", image, place)[0])

    @staticmethod
    def text(image, place):
        end = image.find(b"\0", place)
        if end < 0:
            raise Damage
        return quoted(image[place:end])

    @staticmethod
    def wide_text(image, place):
        units = (image[i:i + 2] for i in range(place, len(image) - 1, 2))
        return quoted_wide(b"".join(itertools.takewhile(lambda unit: unit != b"\0\0", units)))


# -- The inventory

class Resource:
    """A resource by its layout: who has no debug information of the library does not know the fields."""

    STORED, FROZEN, HIDDEN, NEEDS_LOAD, NEEDS_POST_LOAD, IS_DEFAULT = (1 << bit for bit in range(6))

    def __init__(self, address):
        _, self.name, self.kind, self.references, self.data, self.flags = unpack("QQQixxxxQI", address)

    def summary(self):
        name = quoted(text_at(self.name)) if self.name else "without a name"
        kind = class_of(self.kind) if self.kind else "no kind"
        return "Resource %s of %s, %s, %s" % (name, kind, counted(self.references, "reference"), ", ".join(self.states()))

    def states(self):
        if self.flags & self.NEEDS_LOAD:
            yield "load owed"
        elif self.data == 0:
            yield "no data"
        else:
            yield "default data" if self.flags & self.IS_DEFAULT else "loaded"
        if self.flags & self.NEEDS_POST_LOAD:
            yield "PostLoad owed"
        yield "stored" if self.flags & self.STORED else "not stored"
        if self.flags & self.HIDDEN:
            yield "hidden"
        if self.flags & self.FROZEN:
            yield "frozen"

    def items(self):
        if self.data:
            yield "data", "%s at 0x%x" % (class_of(self.data), self.data)


def class_of(address):
    """The class of an object, as the symbol of its virtual table tells it. The names that objects give themselves are behind
    calls."""
    symbol = gdb.execute("info symbol 0x%x" % unpack("Q", address), to_string=True)
    _, mark, name = symbol.partition("vtable for ")
    return name.partition(" + ")[0] if mark else "an unknown class"


class ResourcePrinter(Printer):
    def summary(self):
        return self.resource().summary()

    def items(self):
        return self.resource().items()

    def resource(self):
        return Resource(int(self.value.address))


class HandlePrinter(ResourcePrinter):
    def summary(self):
        return super().summary() if int(self.value["resource"]) else "Handle without a resource"

    def items(self):
        return super().items() if int(self.value["resource"]) else ()

    def resource(self):
        return Resource(int(self.value["resource"]))


# -- Records described at run time

class Member:
    """A member of a layout, out of its LayoutMember."""

    FORMS = {"float": "f", "int": "i", "bool": "B", "Math::Vector2f": "2f", "Math::Vector3f": "3f", "Math::Vector4f": "4f",
             "Math::Matrix3f": "9f", "Math::Matrix43f": "12f", "Math::Matrix4f": "16f", "MathPrim::Colour": "I"}
    SHOW = {"float": shown_float, "int": str, "bool": shown_bool, "MathPrim::Colour": "0x%08x".__mod__}

    def __init__(self, value):
        self.name = bare_key(int(value["key"]["value"]))
        self.length, self.offset = int(value["length"]), int(value["offset"])
        kind = value["type"].dereference()
        self.type, self.size = string_of(kind["name"]).decode("utf-8", "replace"), int(kind["size"])

    def described(self):
        array = "[%d]" % self.length if self.length != 1 else ""
        return "%s%s at %d" % (self.type, array, self.offset)

    def shown(self, block):
        places = range(self.offset, self.offset + self.length * self.size, self.size or 1)
        texts = [self.element(block[place:place + self.size]) for place in places[:MOST_ELEMENTS]]
        if self.length == 1 and texts:
            return texts[0]
        return braced(texts + ["..."] * (len(places) > MOST_ELEMENTS))

    def element(self, data):
        form = "<" + self.FORMS.get(self.type, "")
        if len(data) != struct.calcsize(form):
            return "bytes " + data.hex(" ")
        texts = [self.SHOW.get(self.type, shown_float)(part) for part in struct.unpack(form, data)]
        return texts[0] if len(texts) == 1 else braced(texts)


class InternalLayoutPrinter(Printer):
    def summary(self):
        return "Layout of %s, %s" % (counted(elements_of(self.value["members"])[1], "member"),
                                     counted(int(self.value["dataSize"]), "byte"))

    def items(self):
        for member in self.members():
            yield member.name, member.described()

    def members(self):
        first, count = elements_of(self.value["members"])
        return (Member((first + index).dereference()) for index in range(count))


class LayoutPrinter(InternalLayoutPrinter):
    def __init__(self, value):
        super().__init__(value["body"]["px"].dereference())


class BufferPrinter(Printer):
    def summary(self):
        if int(self.value["layout"]["px"]) == 0:
            return "Buffer that is not set up"
        return "Buffer of " + counted(int(self.value["size"]), "byte")

    def items(self):
        layout = self.value["layout"]["px"]
        if int(layout) != 0:
            block = read(int(self.value["data"]), int(self.value["size"]))
            for member in InternalLayoutPrinter(layout.dereference()).members():
                yield member.name, member.shown(block)


# -- Settings

class ConfigFilePrinter(Printer):
    def summary(self):
        count = int(self.value["sections"]["_M_t"]["_M_impl"]["_M_node_count"])
        return "ConfigFile %s, %s, at [%s]" % (quoted_wide(string_of(self.value["filename"])), counted(count, "section"),
                                               escaped(string_of(self.value["currentSection"])))

    def items(self):
        for section, entries in map_of(self.value["sections"]):
            for key, text in map_of(entries):
                yield "[%s] %s" % (escaped(string_of(section)), escaped(string_of(key))), quoted(string_of(text))


class KeyValuePrinter(Printer):
    def summary(self):
        return "KeyValueContainer of %s and %s" % (counted(elements_of(self.value["numbers"])[1], "number"),
                                                   counted(elements_of(self.value["strings"])[1], "text"))

    def items(self):
        for key, number in self.pairs("numbers"):
            yield bare_key(key, Names.OF_NUMBERS), shown_float(float(number))
        for key, text in self.pairs("strings"):
            yield bare_key(key, Names.OF_TEXTS), quoted(string_of(text))

    def pairs(self, field):
        first, count = elements_of(self.value[field])
        for index in range(count):
            pair = (first + index).dereference()
            yield int(pair["first"]["value"]), pair["second"]


PRINTERS = {
    "Dictionary::Key": KeyPrinter,
    "dca::Key": DcaKeyPrinter,
    "Dictionary": DictionaryPrinter,
    "BinaryConfig": TablePrinter,
    "Inv::Resource": ResourcePrinter,
    "inventory::Handle<.*>": HandlePrinter,
    "RunTimeStruct::InternalLayout": InternalLayoutPrinter,
    "RunTimeStruct::Layout": LayoutPrinter,
    "RunTimeStruct::Buffer": BufferPrinter,
    "ConfigFile": ConfigFilePrinter,
    "KeyValueContainer": KeyValuePrinter,
}


def register(objfile):
    collection = gdb.printing.RegexpCollectionPrettyPrinter("crossutil")
    for name, printer in PRINTERS.items():
        collection.add_printer(name, "^%s$" % name, printer)
    gdb.printing.register_pretty_printer(objfile, collection, replace=True)


register(gdb.current_objfile())
