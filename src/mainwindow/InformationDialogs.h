#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLabel;

namespace tessara {

struct InformationText;
struct InformationLink;

/// Opens a target of the kind "WEB" or "MAIL" in the desktop.
using OpenLinkFunction = std::function<void(const std::string& target, const std::string& kind)>;

/// The page of the help menu's newsletter entry; of the kind "WEB".
constexpr char kNewsletterAddress[] = "www.tessara.example/newsletter";

/// A form of fixed text and links, shown modally.
class InformationForm : public QDialog {
    Q_OBJECT
  protected:
    InformationForm(const InformationText& text, OpenLinkFunction openLink, QWidget* parent);

  private:
    QLabel* MakeLink(const InformationLink& link);

    OpenLinkFunction OpenLink_;
};

class AboutForm final : public InformationForm {
  public:
    AboutForm(OpenLinkFunction openLink, QWidget* parent);
};

class FrmHomePage final : public InformationForm {
  public:
    FrmHomePage(OpenLinkFunction openLink, QWidget* parent);
};

/// Further products.
class DialogProd final : public InformationForm {
  public:
    DialogProd(OpenLinkFunction openLink, QWidget* parent);
};

/// Internet services and support.
class ServicesForm final : public InformationForm {
  public:
    ServicesForm(OpenLinkFunction openLink, QWidget* parent);
};

}  // namespace tessara
