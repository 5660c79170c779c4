// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayFont.h"

#include "host/session/OverlaySession.h"

#include <QFont>
#include <QtTest>

using namespace Velmar::Host;

class tst_OverlayFont : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fontOfTheGrid()
    {
        const OverlaySession session(QSize(720, 576));
        QCOMPARE(overlayFontProblem(session.settings().font()), QString());
    }

    /// What Qt found instead looks as if it were right; only its name tells.
    void anotherFont()
    {
        QFont font(QStringLiteral("No Such Font"));
        font.setFixedPitch(true);
        const QString problem = overlayFontProblem(font);
        QVERIFY2(problem.contains(QStringLiteral("\"No Such Font\" is not installed")),
                 qPrintable(problem));
        QVERIFY2(problem.contains(QStringLiteral("DejaVu")), qPrintable(problem));
        QVERIFY2(problem.endsWith(QStringLiteral("package fonts-dejavu-core")),
                 qPrintable(problem));
    }
};

QTEST_MAIN(tst_OverlayFont)
#include "tst_OverlayFont.moc"
