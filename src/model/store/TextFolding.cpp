#include "model/store/TextFolding.h"

#include <array>
#include <cstdint>

#include <sqlite3.h>

#include "model/store/SqliteDatabase.h"

namespace tb {

namespace {

// A run of code points from `first` to `last` in steps of `stride` that share `value`.
struct FoldRange {
    char16_t first;
    char16_t last;
    unsigned char stride;
    int value;
};

struct FoldExpansion {
    char16_t code;
    char text[3];
};

#include "model/store/TextFoldingTable.inc"

// One code point: its lower case, its base letter (same case), or an ASCII expansion that
// replaces the base. The generated ranges are spread into one entry per code point at
// compile time, so that a lookup is an index.
struct FoldEntry {
    char16_t lower;
    char16_t base;
    char expansion[3];
};

constexpr char32_t kLatinFirst = 0xC0;  // Latin-1 letters to the end of Cyrillic
constexpr char32_t kLatinEnd = 0x500;
constexpr char32_t kAdditionalFirst = 0x1E00;  // Latin Extended Additional
constexpr char32_t kAdditionalEnd = 0x1F00;
constexpr std::size_t kEntryCount = (kLatinEnd - kLatinFirst) + (kAdditionalEnd - kAdditionalFirst);

constexpr std::size_t indexOf(char32_t c) {
    return c < kLatinEnd ? c - kLatinFirst : (kLatinEnd - kLatinFirst) + (c - kAdditionalFirst);
}

constexpr std::array<FoldEntry, kEntryCount> spreadTable() {
    std::array<FoldEntry, kEntryCount> table{};
    auto fill = [&table](char32_t first, char32_t end) {
        for (char32_t c = first; c < end; ++c) {
            table[indexOf(c)].lower = static_cast<char16_t>(c);
            table[indexOf(c)].base = static_cast<char16_t>(c);
        }
    };
    fill(kLatinFirst, kLatinEnd);
    fill(kAdditionalFirst, kAdditionalEnd);
    for (const FoldRange& range : kLowerRanges) {
        for (char32_t c = range.first; c <= range.last; c += range.stride) {
            table[indexOf(c)].lower = static_cast<char16_t>(static_cast<int>(c) + range.value);
        }
    }
    for (const FoldRange& range : kBaseRanges) {
        for (char32_t c = range.first; c <= range.last; c += range.stride) {
            table[indexOf(c)].base = static_cast<char16_t>(range.value);
        }
    }
    for (const FoldExpansion& expansion : kExpansions) {
        for (std::size_t i = 0; i < 3; ++i) {
            table[indexOf(expansion.code)].expansion[i] = expansion.text[i];
        }
    }
    return table;
}

constexpr std::array<FoldEntry, kEntryCount> kFoldTable = spreadTable();

const FoldEntry* entryFor(char32_t c) {
    if ((c >= kLatinFirst && c < kLatinEnd) || (c >= kAdditionalFirst && c < kAdditionalEnd)) {
        return &kFoldTable[indexOf(c)];
    }
    return nullptr;
}

char32_t lowerOf(char32_t c) {
    if (c < 0x80) {
        return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    }
    const FoldEntry* entry = entryFor(c);
    return entry ? entry->lower : c;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// Decodes the code point at `at`; 0 length for a byte that starts no valid sequence.
char32_t decode(std::string_view text, std::size_t at, std::size_t& length) {
    auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char first = byte(at);
    std::size_t need = first >= 0xF0 && first < 0xF5 ? 4
                       : first >= 0xE0               ? 3
                       : first >= 0xC2               ? 2
                                                     : 0;
    if (need == 0 || first >= 0xF5 || at + need > text.size()) {
        length = 0;
        return 0;
    }
    char32_t c = first & (0x7F >> need);
    for (std::size_t i = 1; i < need; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            length = 0;
            return 0;
        }
        c = (c << 6) | (byte(at + i) & 0x3F);
    }
    length = need;
    return c;
}

void foldFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
    if (argc != 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const unsigned char* text = sqlite3_value_text(argv[0]);
    int bytes = sqlite3_value_bytes(argv[0]);
    auto options = static_cast<unsigned>(sqlite3_value_int(argv[1]));
    std::string folded = TextFolding::fold(
        {reinterpret_cast<const char*>(text), static_cast<std::size_t>(bytes)}, options);
    sqlite3_result_text64(context, folded.data(), folded.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

std::string_view textOf(sqlite3_value* value) {
    const unsigned char* text = sqlite3_value_text(value);
    return {reinterpret_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// tb_contains(text, part, options): whether `text` holds `part` once both are folded. The
// folded part is kept with the statement while it is a constant, so that a search folds
// only each row's text, into a buffer reused from row to row.
void containsFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
    if (argc != 3 || sqlite3_value_type(argv[0]) == SQLITE_NULL ||
        sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto options = static_cast<unsigned>(sqlite3_value_int(argv[2]));
    const auto* kept = static_cast<const std::string*>(sqlite3_get_auxdata(context, 1));
    std::string folded;
    if (!kept) {
        folded = TextFolding::fold(textOf(argv[1]), options);
    }
    const std::string& part = kept ? *kept : folded;
    // Nothing to look for is never found (find() would find it everywhere); so too a part
    // that folds away entirely, such as a lone combining mark.
    bool found = false;
    if (!part.empty()) {
        thread_local std::string text;
        TextFolding::foldInto(textOf(argv[0]), options, text);
        found = text.find(part) != std::string::npos;
    }
    sqlite3_result_int(context, found ? 1 : 0);
    if (!kept) {
        // SQLite may drop it at once (when the part isn't a constant); nothing uses it after.
        sqlite3_set_auxdata(context, 1, new std::string(std::move(folded)),
                            [](void* value) { delete static_cast<std::string*>(value); });
    }
}

}  // namespace

std::string TextFolding::fold(std::string_view text, unsigned options) {
    std::string out;
    foldInto(text, options, out);
    return out;
}

void TextFolding::foldInto(std::string_view text, unsigned options, std::string& out) {
    bool caseless = options & kCaseInsensitive;
    bool markless = options & kDiacriticInsensitive;
    out.clear();
    out.reserve(text.size());
    std::size_t at = 0;
    while (at < text.size()) {
        // Most text is a run of ASCII, copied (and lowered) in one go.
        std::size_t run = at;
        while (run < text.size() && static_cast<unsigned char>(text[run]) < 0x80) {
            ++run;
        }
        if (run > at) {
            const std::size_t start = out.size();
            out.append(text.data() + at, run - at);
            if (caseless) {
                for (std::size_t i = start; i < out.size(); ++i) {
                    const char c = out[i];
                    out[i] = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
                }
            }
            at = run;
            continue;
        }
        std::size_t length = 0;
        char32_t c = decode(text, at, length);
        if (length == 0) {
            out += text[at];
            ++at;
            continue;
        }
        std::string_view original = text.substr(at, length);
        at += length;
        if (markless && c >= 0x300 && c <= 0x36F) {
            continue;  // a combining mark
        }
        const FoldEntry* entry = entryFor(c);
        if (!entry) {
            out += original;
        } else if (markless && entry->expansion[0]) {
            for (const char* e = entry->expansion; *e; ++e) {
                out += static_cast<char>(caseless ? lowerOf(static_cast<unsigned char>(*e)) : *e);
            }
        } else if (markless) {
            appendUtf8(out, caseless ? lowerOf(entry->base) : entry->base);
        } else if (caseless) {
            appendUtf8(out, entry->lower);
        } else {
            out += original;
        }
    }
}

bool TextFolding::registerSqlFunction(SqliteDatabase& database) {
    int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    return sqlite3_create_function_v2(database.handle(), "tb_fold", 2, flags, nullptr,
                                      &foldFunction, nullptr, nullptr, nullptr) == SQLITE_OK &&
           sqlite3_create_function_v2(database.handle(), "tb_contains", 3, flags, nullptr,
                                      &containsFunction, nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace tb
