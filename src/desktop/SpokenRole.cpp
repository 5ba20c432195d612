#include "desktop/SpokenRole.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace tessara {
namespace {

constexpr char kRole[] = "spokenRole";

QAccessibleInterface* MakeSpoken(const QString&, QObject* object) {
    const QVariant role = object->property(kRole);
    if (!role.isValid()) return nullptr;
    return new QAccessibleWidget(qobject_cast<QWidget*>(object), role.value<QAccessible::Role>());
}

}  // namespace

void SetSpokenRole(QWidget* widget, QAccessible::Role role) {
    QAccessible::installFactory(MakeSpoken);
    widget->setProperty(kRole, QVariant::fromValue(role));
}

}  // namespace tessara
