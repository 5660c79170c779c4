// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ReadXml_p.h"

#include <QFile>
#include <QIODevice>
#include <QtTest>

#include <algorithm>
#include <cstring>

using namespace Velmar::VideoOverlay;

namespace {

/// Gives away @p content in pieces, as a pipe does, and remembers for how much it was asked at
/// most.
class Source : public QIODevice
{
public:
    explicit Source(QByteArray content)
        : m_content(std::move(content))
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    qint64 mostAskedFor() const { return m_most; }
    qint64 left() const { return m_content.size() - m_at; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        constexpr qint64 piece = 1000;
        m_most = std::max(m_most, size);
        const qint64 given = std::min({size, piece, left()});
        std::memcpy(data, m_content.constData() + m_at, std::size_t(given));
        m_at += given;
        return given == 0 ? -1 : given;
    }
    qint64 writeData(const char * /*data*/, qint64 /*size*/) override { return -1; }

private:
    QByteArray m_content;
    qint64 m_at = 0;
    qint64 m_most = 0;
};

} // namespace

class tst_ReadXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAllPieces()
    {
        Source source("<A>" + QByteArray(300000, 'x') + "</A>");
        QDomDocument document;
        QString message;
        QVERIFY2(readXml(source, document, &message), qPrintable(message));
        QCOMPARE(document.documentElement().text().size(), 300000);
        QCOMPARE(source.left(), qint64(0));
    }

    /// A profile has some kilobytes: room for the largest one is not asked for each time.
    void asksForLittleAtOnce()
    {
        Source source("<A/>");
        QDomDocument document;
        QString message;
        QVERIFY(readXml(source, document, &message));
        QVERIFY2(source.mostAskedFor() <= 64 * 1024,
                 qPrintable(QString::number(source.mostAskedFor())));
    }

    /// It is no short file: who fills it up would lose the rest.
    void tellsAFailedReading()
    {
        QFile file(QStringLiteral("/proc/self/mem")); // nothing is mapped at its start
        QVERIFY(file.open(QIODevice::ReadOnly));
        QDomDocument document;
        QString message;
        QVERIFY(!readXml(file, document, &message));
        QCOMPARE(message, QStringLiteral("Input/output error"));
    }

    void readsNoFurtherThanTheLimit()
    {
        Source source(QByteArray(int(maximumXmlBytes) + 100000, ' '));
        QDomDocument document;
        QString message;
        QVERIFY(!readXml(source, document, &message));
        QCOMPARE(message, QStringLiteral("larger than 16777216 bytes"));
        QVERIFY(source.left() >= 90000);
    }
};

QTEST_GUILESS_MAIN(tst_ReadXml)
#include "tst_ReadXml.moc"
