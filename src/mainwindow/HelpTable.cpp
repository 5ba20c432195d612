#include "mainwindow/HelpTable.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

// contents.json:
//
//   contents  entries, each with a "title", a "page" (or a page, "#" and a mark) and "parts", which
//             are entries; either of the last two may be missing
//   index     words and their topics

namespace tessara {
namespace {

std::vector<HelpEntry> EntriesOf(const QJsonValue& list) {
    std::vector<HelpEntry> entries;
    for (const QJsonValue entry : list.toArray())
        entries.push_back({entry[QLatin1String("title")].toString(), entry[QLatin1String("page")].toString(),
                           EntriesOf(entry[QLatin1String("parts")])});
    return entries;
}

std::vector<HelpEntry> IndexOf(const QJsonObject& words) {
    std::vector<HelpEntry> index;
    for (auto word = words.begin(); word != words.end(); ++word)
        index.push_back({word.key(), word.value().toString(), {}});
    std::ranges::sort(index, [](const HelpEntry& a, const HelpEntry& b) {
        return a.title.compare(b.title, Qt::CaseInsensitive) < 0;
    });
    return index;
}

}  // namespace

HelpTable ReadHelpTable(const QString& folder) {
    QFile file(folder + QLatin1String("/contents.json"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QJsonDocument table = QJsonDocument::fromJson(file.readAll());
    return {EntriesOf(table[QLatin1String("contents")]), IndexOf(table[QLatin1String("index")].toObject())};
}

}  // namespace tessara
