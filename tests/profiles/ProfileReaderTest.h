// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/LoggedTest.h"
#include "videooverlay/profiles/ProfileXmlReader.h"

#include <QColor>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

using namespace Velmar::VideoOverlay;

using Header = QHash<QString, QVariant>;
using Records = QList<ElementParam>;

inline QString s(const char *text)
{
    return QString::fromUtf8(text);
}

/// What the tests of this class share.
class ProfileReaderTest : public Velmar::Test::LoggedTest
{
protected:
    QString file(const QByteArray &bytes)
    {
        const QString path = m_dir.filePath(s("profile.xml"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
            || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    Records read(const QByteArray &children)
    {
        Records records;
        ProfileXmlReader reader;
        if (!reader.readElements(file("<PROFILE>" + children + "</PROFILE>"), records))
            QTest::qFail("not read", __FILE__, __LINE__);
        return records;
    }

    ElementParam readOne(const QByteArray &element)
    {
        const Records records = read(element);
        return records.size() == 1 ? records.first() : ElementParam();
    }

    QTemporaryDir m_dir;
};
