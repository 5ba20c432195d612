#include "mainwindow/InformationDialogs.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <span>
#include <utility>

#include "artwork/Artwork.h"
#include "desktop/SpokenRole.h"
#include "settings/Product.h"

namespace tessara {

/// Targets carry no scheme: the opener knows that of plain pages and of mail, and takes no other for one.
struct InformationLink {
    const char* label;
    const char* target;
    const char* kind = "WEB";
};

struct InformationText {
    const char* name;
    const char* title;
    const char* headline;
    const char* text;  ///< VERSION and BUILD stand for those of the program
    std::span<const InformationLink> links;
};

namespace {

constexpr InformationLink kHomePage[] = {{"Home page:", "www.tessara.example"}};
constexpr InformationLink kProducts[] = {{"All products:", "www.tessara.example/products"}};
constexpr InformationLink kServices[] = {
    {"Newsletter:", kNewsletterAddress},
    {"Questions and answers:", "www.tessara.example/support"},
    {"Support by mail:", "support@tessara.example", "MAIL"},
};

constexpr InformationText kAbout = {
    "AboutForm",
    "About Tessara Pro",
    kProductName,
    "VERSION BUILD\n\n"
    "Converts graphics files and touches them up on the way.\n\n"
    "Copyright © 2026 The Tessara Pro developers",
    kHomePage,
};
constexpr InformationText kHome = {
    "FrmHomePage",
    "Homepage",
    "Tessara Pro on the Internet",
    "The home page has news of the program, its latest version and the manual.",
    kHomePage,
};
constexpr InformationText kProd = {
    "DialogProd", "Other Products", "Other programs", "The products page presents our other programs.",
    kProducts,
};
constexpr InformationText kService = {
    "ServicesForm",
    "Internet Services and Supports",
    "Services and support",
    "The newsletter tells of new versions. Answers to many questions are on the support page; "
    "whatever is not, we answer by mail.",
    kServices,
};

constexpr int kPicture = 64;
constexpr int kTextWidth = 360;
constexpr int kMargin = 20;

/// A label that is nothing but a link, which is marked as soon as the Tab key leads to it; the toolkit's own
/// takes the key twice.
class LinkLabel final : public QLabel {
  protected:
    void focusInEvent(QFocusEvent* event) override {
        QLabel::focusInEvent(event);
        QLabel::focusNextPrevChild(true);
    }
};

QLabel* MakeText(const char* text) {
    QString shown = QString::fromUtf8(text);
    shown.replace(QLatin1String("VERSION"), QLatin1String(kVersionText));
    shown.replace(QLatin1String("BUILD"), QLatin1String(kBuildText));
    auto* label = new QLabel(shown);
    label->setWordWrap(true);
    label->setMinimumWidth(kTextWidth);
    return label;
}

QLabel* MakeHeadline(const char* text) {
    QLabel* label = MakeText(text);
    QFont larger = label->font();
    larger.setPointSizeF(larger.pointSizeF() * 1.4);
    larger.setBold(true);
    label->setFont(larger);
    return label;
}

/// The program's icon at the left of all that `texts` holds.
QHBoxLayout* BesideIcon(const QWidget& form, QLayout* texts) {
    auto* picture = new QLabel;
    picture->setPixmap(ArtworkPixmap("tessara", QSize(kPicture, kPicture), PictureState::Normal,
                                     form.devicePixelRatioF(), form.palette()));
    auto* line = new QHBoxLayout;
    line->setSpacing(kMargin);
    line->addWidget(picture, 0, Qt::AlignTop);
    line->addLayout(texts, 1);
    return line;
}

}  // namespace

InformationForm::InformationForm(const InformationText& text, OpenLinkFunction openLink, QWidget* parent)
    : QDialog(parent), OpenLink_(std::move(openLink)) {
    setObjectName(QLatin1String(text.name));
    setWindowTitle(QLatin1String(text.title));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(kMargin / 2);
    texts->addWidget(MakeHeadline(text.headline));
    texts->addWidget(MakeText(text.text));
    auto* links = new QGridLayout;
    links->setColumnStretch(1, 1);
    for (const InformationLink& link : text.links) {
        const int row = links->rowCount();
        links->addWidget(new QLabel(QLatin1String(link.label)), row, 0);
        links->addWidget(MakeLink(link), row, 1);
    }
    texts->addLayout(links);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kMargin);
    layout->addLayout(BesideIcon(*this, texts));
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    buttons->button(QDialogButtonBox::Ok)->setFocus();  // Enter closes the form, and opens no link
}

QLabel* InformationForm::MakeLink(const InformationLink& link) {
    const QString target = QLatin1String(link.target);
    const QString color = ArtworkAccent(palette()).name();
    auto* label = new LinkLabel;
    SetSpokenRole(label, QAccessible::Link);
    label->setAccessibleName(target);
    label->setText(QStringLiteral("<a href=\"%1\" style=\"color: %2\">%1</a>").arg(target, color));
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(label, &QLabel::linkActivated, this, [this, &link] { OpenLink_(link.target, link.kind); });
    return label;
}

AboutForm::AboutForm(OpenLinkFunction openLink, QWidget* parent)
    : InformationForm(kAbout, std::move(openLink), parent) {}

FrmHomePage::FrmHomePage(OpenLinkFunction openLink, QWidget* parent)
    : InformationForm(kHome, std::move(openLink), parent) {}

DialogProd::DialogProd(OpenLinkFunction openLink, QWidget* parent)
    : InformationForm(kProd, std::move(openLink), parent) {}

ServicesForm::ServicesForm(OpenLinkFunction openLink, QWidget* parent)
    : InformationForm(kService, std::move(openLink), parent) {}

}  // namespace tessara
