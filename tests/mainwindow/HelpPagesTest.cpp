// The manual itself: that everything in it leads somewhere, and that it tells what the tables of the program
// say.

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>
#include <map>

#include "core/ProgramFolders.h"
#include "core/rastx/Codec.h"
#include "desktop/PathText.h"
#include "edit/EffectCatalogue.h"
#include "edit/EffectParameters.h"
#include "mainwindow/Help.h"
#include "mainwindow/HelpTable.h"
#include "mainwindow/MenuTable.h"

namespace tessara {

namespace {

QString Text(std::string_view text) {
    return ShownText(std::string(text));
}

QDir Folder() {
    return QDir(ShownText(HelpFolder()));
}

/// A page as the window's own reader understands it.
struct Page {
    QString title, heading;
    QStringList marks;  ///< in the order of the page
    QStringList links, pictures;
    QStringList firstCells;                ///< of the rows of all tables, once for each cell of the row
    std::map<QString, QStringList> rowAt;  ///< the table row of a mark
};

/// The texts of the table row that a block is in, cell by cell; empty outside of tables.
QStringList RowOf(QTextDocument& document, const QTextBlock& block) {
    const QTextTable* table = QTextCursor(block).currentTable();
    QStringList row;
    for (int column = 0; table && column < table->columns(); ++column) {
        const QTextTableCell cell = table->cellAt(table->cellAt(block.position()).row(), column);
        QTextCursor content(&document);
        content.setPosition(cell.firstPosition());
        content.setPosition(cell.lastPosition(), QTextCursor::KeepAnchor);
        row += content.selectedText().replace(QChar::LineSeparator, QLatin1Char(' '));
    }
    return row;
}

Page ReadPage(const QString& name) {
    QFile file(Folder().filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    QTextDocument document;
    document.setHtml(QString::fromUtf8(file.readAll()));
    Page page{
        document.metaInformation(QTextDocument::DocumentTitle), document.begin().text(), {}, {}, {}, {}, {}};
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QStringList marks;
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextCharFormat format = fragment.fragment().charFormat();
            marks += format.anchorNames();
            if (!format.anchorHref().isEmpty()) page.links += format.anchorHref();
            if (format.isImageFormat()) page.pictures += format.toImageFormat().name();
        }
        page.marks += marks;
        const QStringList row = RowOf(document, block);
        page.firstCells += row.mid(0, 1);
        for (const QString& mark : marks) page.rowAt[mark] = row;
    }
    return page;
}

struct ShownEffect {
    EffectMenu menu;
    EffectEntry entry;
};
std::vector<ShownEffect> ShownEffects() {
    std::vector<ShownEffect> shown;
    for (const EffectMenu& menu : EffectMenus())
        for (const EffectEntry& entry : EffectEntries())
            if (entry.array == menu.array && entry.visible && !entry.IsSeparator())
                shown.push_back({menu, entry});
    return shown;
}

QString Anchor(const EffectMenu& menu, const EffectEntry& entry) {
    return Text(EffectHelpAnchor(menu.group, entry.index));
}

class HelpPages : public testing::Test {
  protected:
    HelpPages() : table_(ReadHelpTable(Folder().path())) {
        for (const QString& name : Folder().entryList({QStringLiteral("*.htm")}))
            pages_[name] = ReadPage(name);
        for (const HelpEntry& entry : table_.index) index_[entry.title] = entry.topic;
    }

    void ExpectTopic(const QString& topic, const QString& from) {
        const QString page = topic.section(QLatin1Char('#'), 0, 0), mark = topic.section(QLatin1Char('#'), 1);
        const auto found = pages_.find(page.isEmpty() ? from : page);
        ASSERT_NE(found, pages_.end()) << topic.toStdString() << " in " << from.toStdString();
        EXPECT_TRUE(mark.isEmpty() || found->second.marks.contains(mark))
            << topic.toStdString() << " in " << from.toStdString();
        ++topics_;
    }

    /// All entries of the contents with a page, by topic.
    static void Flatten(const std::vector<HelpEntry>& entries, std::map<QString, QString>& titles) {
        for (const HelpEntry& entry : entries) {
            if (!entry.topic.isEmpty()) titles[entry.topic] = entry.title;
            Flatten(entry.parts, titles);
        }
    }

    HelpTable table_;
    std::map<QString, Page> pages_;
    std::map<QString, QString> index_;
    int topics_ = 0;
};

TEST_F(HelpPages, TheContentsListEveryPageUnderItsOwnTitle) {
    std::map<QString, QString> titles;
    Flatten(table_.contents, titles);
    EXPECT_GE(pages_.size(), 10u);
    for (const auto& [name, page] : pages_) {
        EXPECT_EQ(titles[name].toStdString(), page.title.toStdString());
        EXPECT_EQ(page.heading.toStdString(), page.title.toStdString());
    }
    for (const auto& [topic, title] : titles) ExpectTopic(topic, QStringLiteral("contents"));
}

TEST_F(HelpPages, EveryLinkIndexWordAndPictureLeadsSomewhere) {
    int pictures = 0;
    for (const auto& [name, page] : pages_) {
        for (const QString& link : page.links) ExpectTopic(link, name);
        for (const QString& picture : page.pictures) {
            EXPECT_FALSE(QImage(Folder().filePath(picture)).isNull()) << picture.toStdString();
            ++pictures;
        }
        QStringList distinct = page.marks;
        EXPECT_EQ(distinct.removeDuplicates(), 0) << name.toStdString();
    }
    for (const auto& [word, topic] : index_) ExpectTopic(topic, word);
    EXPECT_GT(topics_, 200);
    QDirIterator files(Folder().filePath(QStringLiteral("pictures")), QDir::Files,
                       QDirIterator::Subdirectories);
    for (; files.hasNext(); files.next()) --pictures;
    EXPECT_EQ(pictures, 0) << "unused";
}

TEST_F(HelpPages, EveryTopicThatTheProgramOpensExists) {
    for (const char* topic : {kFirstHelpPage, "2-1.htm", "2-2.htm", "2-1.htm#abouttr"})
        ExpectTopic(Text(topic), QStringLiteral("the program"));
    for (const auto& [menu, entry] : ShownEffects())
        ExpectTopic(QStringLiteral("2-1.htm#") + Anchor(menu, entry), Text(entry.caption));
    EXPECT_GT(topics_, 65);
}

/// The help button of the effect dialog goes to a section: there the effect must be told of, with its
/// sliders.
TEST_F(HelpPages, EveryEffectIsToldOfWhereItsHelpButtonLeads) {
    const Page& page = pages_[QStringLiteral("2-1.htm")];
    QStringList sections;
    int effects = 0;
    for (const auto& [menu, entry] : ShownEffects()) sections += Anchor(menu, entry);
    for (const auto& [menu, entry] : ShownEffects()) {
        const QString caption = Text(EffectCaptionOf(entry.caption)).trimmed();
        ASSERT_TRUE(index_.contains(caption)) << entry.caption;
        const auto row = page.rowAt.find(index_[caption].section(QLatin1Char('#'), 1));
        if (row == page.rowAt.end()) continue;  // resize, undo and redo have another page
        qsizetype place = page.marks.indexOf(row->first);
        while (place > 0 && !sections.contains(page.marks[place])) --place;
        EXPECT_EQ(page.marks[place], Anchor(menu, entry)) << entry.caption;

        const QString told = row->second[1];
        EXPECT_TRUE(told.startsWith(caption)) << told.toStdString();
        if (const EffectParameters* effect = FindEffectParameters(entry.code)) {
            const EffectSlider slider = effect->Slider();
            const QString range = QStringLiteral("%1 to %2").arg(slider.Min).arg(slider.Max);
            const QString start = QStringLiteral("at first %1").arg(slider.Value);
            EXPECT_TRUE(told.contains(range) && told.contains(start)) << told.toStdString();
        }
        ++effects;
    }
    EXPECT_EQ(effects, 65);
}

TEST_F(HelpPages, TheTablesOfFormatsAndKeysAreThoseOfTheProgram) {
    const QStringList told =
        pages_[QStringLiteral("4-1.htm")].firstCells.join(QStringLiteral(", ")).split(QStringLiteral(", "));
    for (const ImportFormat& format : ImportFormatTable())
        EXPECT_TRUE(told.contains(Text(format.label).toUpper())) << format.label;
    for (const ExportFormat& format : ExportFormatTable())
        EXPECT_FALSE(pages_[QStringLiteral("4-1.htm")].rowAt[Text(format.label).toLower()].isEmpty())
            << format.label;

    const QStringList keys = pages_[QStringLiteral("4-3.htm")].firstCells;
    for (const MenuItem& item : MenuItems())
        EXPECT_TRUE(item.shortcut.empty() || keys.contains(Text(item.shortcut))) << item.caption;
    for (const EffectEntry& entry : EffectEntries())
        EXPECT_TRUE(entry.shortcut.empty() || keys.contains(Text(entry.shortcut))) << entry.caption;
}

}  // namespace
}  // namespace tessara
