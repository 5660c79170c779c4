// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ValuesCommand.h"

#include "host/commands/Report.h"
#include "host/feed/SystemValueDatasourceFactory.h"
#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"

#include <QStringList>

namespace Velmar::Host {

namespace {

QString captionOf(const SystemValueDatasourceFactory &factory, const SystemValue &value)
{
    // Texts of their own have no caption.
    return factory.converter(value.name) ? factory.caption(value.name) : QString();
}

QStringList linesOf(const SystemValueDatasourceFactory &factory, const SystemValue &value)
{
    const auto line = [](const char *label, const QString &text) {
        return QStringLiteral("  %1 %2").arg(QString::fromLatin1(label), -9).arg(text);
    };
    QStringList lines {value.name, line("meaning", value.description)};
    const QString caption = captionOf(factory, value);
    if (!caption.isEmpty())
        lines.append(line("caption", caption));
    lines.append(line("quantity", SystemValues::quantityName(value.quantity)));
    const QStringList units = SystemValues::units(value.quantity);
    if (!units.isEmpty()) {
        lines.append(line("unit", SystemValues::userUnit(value.quantity)));
        lines.append(line("units", units.join(QStringLiteral(", "))));
    }
    lines.append(line("input", SystemValues::inputFormat(value.quantity)));
    lines.append(line("example", QStringLiteral("{\"%1\": %2}").arg(value.name, value.example)));
    return lines;
}

} // namespace

QString valuesText()
{
    const SystemValueDatasourceFactory factory(CATManagement::CatalogStore::instance());
    QStringList blocks;
    QStringList all;
    for (const SystemValue &value : SystemValues::all() + QVector {SystemValues::screenSnip()}) {
        blocks.append(linesOf(factory, value).join(QLatin1Char('\n')));
        all.append(QStringLiteral("\"%1\": %2").arg(value.name, value.example));
    }
    blocks.append(QStringLiteral("Live input (xqosd record --input): UTF-8, one JSON object per "
                                 "line, any of the values:\n"
                                 "{%1}")
                      .arg(all.join(QStringLiteral(", "))));
    return blocks.join(QStringLiteral("\n\n"));
}

int runValues()
{
    report(valuesText());
    return 0;
}

} // namespace Velmar::Host
