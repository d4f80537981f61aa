#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "app/GraphKeys.h"
#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "app/win/WinServices.h"
#include "base/Text.h"

namespace quillon::testing {
namespace {

using Row = std::pair<std::string, std::string>;

/// Keys and what they do, as Help > Keys and Mouse lists them, the lengths of pages in one row.
std::vector<Row> KeyRows(const UserServices& services) {
    const TextTable table = KeysTable(services);
    std::vector<Row> rows;
    const auto bindings = KeyBindings();
    for (std::size_t i = 0; i < bindings.size(); ++i) {
        const std::string key = Utf8(table.Cell(i, 0));
        const std::string action = Utf8(table.Cell(i, 1));
        const std::size_t colon = action.find(": ");
        if (i > 0 && key.size() == 1 && key > "1" && key <= "9" && colon != action.npos) {
            rows.back().first += ", " + key;
            rows.back().second += ", " + action.substr(colon + 2);
        } else {
            rows.emplace_back(key, action);
        }
    }
    return rows;
}

/// The table of the page: rows beside each other in two columns, so that it fits on a sheet.
std::string KeysHtml(const UserServices& services) {
    const std::vector<Row> rows = KeyRows(services);
    const std::string key = "<th>" + Utf8(services.Text(IDS_TABLE_KEY)) + "</th>";
    const std::string head = key + "<th>" + Utf8(services.Text(IDS_TABLE_ACTION)) + "</th>";
    std::string html = "<table class=\"keys\">\n<tr>" + head + head + "</tr>\n";
    const std::size_t half = (rows.size() + 1) / 2;
    for (std::size_t i = 0; i < half; ++i) {
        html += "<tr>";
        for (std::size_t j = i; j < rows.size(); j += half)
            html += "<td>" + rows[j].first + "</td><td>" + rows[j].second + "</td>";
        html += "</tr>\n";
    }
    return html + "</table>\n";
}

// The pages hold the very keys that the program obeys, under the names of the commands that they run. With
// QUILLON_WRITE_HELP, which scripts/help-keys sets, the tables are written instead of compared.
TEST(KeysPage, HoldsTheKeysOfTheProgram) {
    const std::string begin = "<!-- keys -->\n";
    const std::string end = "<!-- end of keys -->\n";
    for (const auto& [folder, language] : {std::pair{"en", Language::English}, {"ru", Language::Russian}}) {
        const std::string path = std::string("help/") + folder + "/keys.html";
        std::stringstream read;
        read << std::ifstream(path, std::ios::binary).rdbuf();
        std::string page = read.str();
        const std::size_t from = page.find(begin) + begin.size();
        const std::size_t to = page.find(end);
        ASSERT_TRUE(page.find(begin) < to && to != page.npos) << path << " has no place for the keys";
        const std::string keys = KeysHtml(WinServices(language));
        if (std::getenv("QUILLON_WRITE_HELP") == nullptr) {
            EXPECT_EQ(page.substr(from, to - from), keys) << path << ": run scripts/help-keys";
        } else {
            std::ofstream(path, std::ios::binary) << page.replace(from, to - from, keys);
        }
    }
}

}  // namespace
}  // namespace quillon::testing
