#pragma once

#include <string>
#include <string_view>

namespace tb {

class SqliteDatabase;

// Folding of text for case- and diacritic-insensitive comparisons ([c], [d], [cd]).
//
// Case folding lowers ASCII, Latin-1, Latin Extended-A/B and Additional, Greek and Cyrillic
// letters. Diacritic folding takes each letter of those ranges to its base letter ("é" and
// "Ê" to "e"/"E", "ø" to "o", "ł" to "l", "й" to "и"), drops combining marks (so decomposed
// text folds the same), and expands "ß" to "ss", "æ" to "ae", "œ" to "oe", "þ" to "th", so
// that "strasse" finds "Straße". Everything else, and bytes that are not UTF-8, pass
// through unchanged. The folding is a fixed table: the same input folds the same everywhere.
class TextFolding {
  public:
    static constexpr unsigned kCaseInsensitive = 1;
    static constexpr unsigned kDiacriticInsensitive = 2;

    static std::string fold(std::string_view text, unsigned options);
    // The same into `out`, which is cleared first (its storage is reused).
    static void foldInto(std::string_view text, unsigned options, std::string& out);

    // Registers tb_fold(text, options) and tb_contains(text, part, options) on the
    // connection: deterministic, NULL for NULL.
    static bool registerSqlFunction(SqliteDatabase& database);
};

}  // namespace tb
