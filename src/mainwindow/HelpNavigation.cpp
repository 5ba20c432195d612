#include "mainwindow/HelpNavigation.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include "artwork/Artwork.h"

namespace tessara {
namespace {

constexpr int kTopicRole = Qt::UserRole;

QTreeWidgetItem* MakeItem(const HelpEntry& entry) {
    auto* item = new QTreeWidgetItem({entry.title});
    item->setData(0, kTopicRole, entry.topic);
    item->setIcon(0, Artwork(entry.topic.isEmpty() ? "book" : "file"));
    for (const HelpEntry& part : entry.parts) item->addChild(MakeItem(part));
    return item;
}

}  // namespace

HelpContents::HelpContents(const std::vector<HelpEntry>& contents, QWidget* parent) : FocusFramed(parent) {
    setObjectName(QStringLiteral("HelpContents"));
    setAccessibleName(QStringLiteral("Contents"));
    setHeaderHidden(true);
    for (const HelpEntry& chapter : contents) addTopLevelItem(MakeItem(chapter));
    expandToDepth(0);
    const auto choose = [this](const QTreeWidgetItem* item) {
        const QString topic = item ? item->data(0, kTopicRole).toString() : QString();
        if (!topic.isEmpty()) Q_EMIT TopicChosen(topic);
    };
    connect(this, &QTreeWidget::currentItemChanged, this, choose);
    // Once more on the entry that is already marked: back from where a link led.
    connect(this, &QTreeWidget::itemClicked, this, choose);
}

QTreeWidgetItem* HelpContents::Find(const QString& topic) const {
    for (QTreeWidgetItemIterator item(const_cast<HelpContents*>(this)); *item; ++item)
        if ((*item)->data(0, kTopicRole).toString() == topic) return *item;
    return nullptr;
}

void HelpContents::ShowTopic(const QString& topic) {
    QTreeWidgetItem* item = Find(topic);
    if (!item) item = Find(topic.section(QLatin1Char('#'), 0, 0));
    if (!item) return;
    const QSignalBlocker blocker(this);
    setCurrentItem(item);
}

HelpIndex::HelpIndex(const std::vector<HelpEntry>& index, QWidget* parent)
    : QWidget(parent), word_(new QLineEdit), words_(new FocusFramed<QListWidget>) {
    word_->setPlaceholderText(QStringLiteral("Type a word"));
    word_->setAccessibleName(QStringLiteral("Word to look for"));
    word_->setClearButtonEnabled(true);
    word_->installEventFilter(this);
    setFocusProxy(word_);
    words_->setObjectName(QStringLiteral("HelpIndex"));
    words_->setAccessibleName(QStringLiteral("Index"));
    for (const HelpEntry& entry : index) {
        auto* item = new QListWidgetItem(entry.title, words_);
        item->setData(kTopicRole, entry.topic);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(word_);
    layout->addWidget(words_);

    connect(word_, &QLineEdit::textChanged, this, &HelpIndex::Narrow);
    connect(word_, &QLineEdit::returnPressed, this, [this] { Choose(words_->currentItem()); });
    connect(words_, &QListWidget::itemActivated, this, &HelpIndex::Choose);
    connect(words_, &QListWidget::itemClicked, this, &HelpIndex::Choose);
}

/// Leaves the words that hold `part`, and marks the first that begins with it, or else the first of all.
void HelpIndex::Narrow(const QString& part) {
    QListWidgetItem* first = nullptr;
    QListWidgetItem* beginning = nullptr;
    for (int row = 0; row < words_->count(); ++row) {
        QListWidgetItem* item = words_->item(row);
        const qsizetype place = item->text().indexOf(part, 0, Qt::CaseInsensitive);
        item->setHidden(place < 0);
        if (!first && place >= 0) first = item;
        if (!beginning && place == 0) beginning = item;
    }
    words_->setCurrentItem(beginning ? beginning : first);
}

void HelpIndex::Choose(const QListWidgetItem* item) {
    if (item) Q_EMIT TopicChosen(item->data(kTopicRole).toString());
}

/// Up and Down walk through the words while one is being typed.
bool HelpIndex::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) return QCoreApplication::sendEvent(words_, event);
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tessara
