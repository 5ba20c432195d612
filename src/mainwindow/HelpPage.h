#pragma once

#include <QTextBrowser>

#include "artwork/FocusFramed.h"

namespace tessara {

/// Shows the pages of a folder, in the palette's colours.
class HelpPage final : public FocusFramed<QTextBrowser> {
    Q_OBJECT
  public:
    HelpPage(QString folder, QWidget* parent);

    /// Goes to a page, or to a mark in it. Does nothing where there is no such page.
    void Open(const QString& topic);
    /// What is shown at an address: the page, "#" and the mark if there is one.
    static QString TopicOf(const QUrl& address);

    /// Makes the letters larger, or smaller for negative steps, within limits.
    void Zoom(int steps);
    void ResetZoom() { Zoom(-zoom_); }

  protected:
    QVariant loadResource(int type, const QUrl& name) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    QByteArray Tinted(QByteArray styleSheet) const;

    QString folder_;
    int zoom_ = 0;
};

}  // namespace tessara
