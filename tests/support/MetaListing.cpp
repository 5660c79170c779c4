// SPDX-License-Identifier: Apache-2.0
#include "tests/support/MetaListing.h"

#include <QMetaMethod>
#include <QMetaProperty>

namespace Velmar::Test {

QStringList propertiesOf(const QMetaObject &meta)
{
    QStringList listing;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QString line = QLatin1String(property.typeName()) + QLatin1Char(' ')
            + QLatin1String(property.name());
        if (property.isWritable())
            line += QLatin1String(" write");
        if (property.isConstant())
            line += QLatin1String(" constant");
        if (property.hasNotifySignal()) {
            line += QLatin1Char(' ')
                + QString::fromLatin1(property.notifySignal().methodSignature());
        }
        listing.append(line);
    }
    return listing;
}

QStringList methodsOf(const QMetaObject &meta)
{
    QStringList listing;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QString line = method.methodType() == QMetaMethod::Signal ? QStringLiteral("signal ")
            : method.methodType() == QMetaMethod::Slot            ? QStringLiteral("slot ")
                                                                  : QStringLiteral("method ");
        if (method.returnType() != QMetaType::Void)
            line += QLatin1String(method.typeName()) + QLatin1Char(' ');
        listing.append(line + QString::fromLatin1(method.methodSignature()));
    }
    return listing;
}

} // namespace Velmar::Test
