// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainStaticTextDatasource.h"

#include "host/platform/AppStateControl.h"
#include "tests/osd/TestRecord.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "videooverlay/elements/CVideoOverlayText.h"

#include <QColor>
#include <QTest>

#include <memory>

using Velmar::AppState;
using Velmar::AppStateControl;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::TestRecord;
using Velmar::VideoOverlay::COsdDomainStaticTextDatasource;
using Velmar::VideoOverlay::COsdElementDatasource;
using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::CVideoOverlayText;
using Velmar::VideoOverlay::ElementParam;
using Kind = Velmar::Database::DomainRecord::Kind;

class tst_COsdDomainStaticTextDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject()
    {
        const QMetaObject &meta = COsdDomainStaticTextDatasource::staticMetaObject;
        QCOMPARE(meta.superClass(), &COsdElementDatasource::staticMetaObject);
        QCOMPARE(propertiesOf(meta), QStringList());
        QCOMPARE(methodsOf(meta),
                 QStringList(QStringLiteral(
                     "slot onProjectChanged(QSharedPointer<Database::CDomainObject>)")));
    }

    void construction()
    {
        show(QStringLiteral("PRJ_Name"));

        QCOMPARE(m_datasource->parent(), m_element.get());
        QCOMPARE(m_element->type(), CVideoOverlayElement::StaticText);
        QCOMPARE(m_element->row(), 4);
        QCOMPARE(m_element->backgroundColor(), QColor(1, 2, 3));
        QCOMPARE(m_element->textColor(), QColor(4, 5, 6));
        QCOMPARE(m_element->caption(), QStringLiteral("Project"));
        QVERIFY(m_element->enabled());
        QVERIFY(m_element->visible());
        QCOMPARE(takeLog(), QStringList());
    }

    void constructionOrder()
    {
        // The record's text comes first, then what the project makes of it.
        m_element = std::make_unique<CVideoOverlayText>();
        QStringList texts;
        connect(m_element.get(), &CVideoOverlayText::textChanged, m_element.get(),
                [&] { texts.append(m_element->text() + QLatin1Char('|') + m_element->caption()); });
        ElementParam param = record(QStringLiteral("PRJ_Name"));
        new COsdDomainStaticTextDatasource(m_element.get(), param);
        QCOMPARE(texts,
                 QStringList({QStringLiteral("from the record|Project"),
                              QStringLiteral("Project|Project")}));
    }

    void notEnabled()
    {
        m_element = std::make_unique<CVideoOverlayText>();
        ElementParam param = record(QStringLiteral("PRJ_Name"));
        param.remove(QStringLiteral("enabled"));
        new COsdDomainStaticTextDatasource(m_element.get(), param);
        QVERIFY(!m_element->visible());
    }

    void aTimeoutRunsFromTheStart()
    {
        // The timeout alone would hide the text until something shows it.
        m_element = std::make_unique<CVideoOverlayText>();
        ElementParam param = record(QStringLiteral("PRJ_Name"));
        param.insert(QStringLiteral("timeout"), 60);
        new COsdDomainStaticTextDatasource(m_element.get(), param);
        QVERIFY(m_element->visible());
        QCOMPARE(takeLog(),
                 QStringList(QStringLiteral("4 VideoOverlayLibrary: ID -1 timeout scheduled to 60 "
                                            "seconds ")));
    }

    void withoutProjectTheCaptionStands()
    {
        show(QStringLiteral("PRJ_Name"));
        QCOMPARE(m_element->text(), QStringLiteral("Project"));
    }

    void theActiveProjectIsShownAtOnce()
    {
        AppStateControl::setActiveProject(m_project);
        show(QStringLiteral("PRJ_Name"));
        QCOMPARE(m_element->text(), QStringLiteral("Elm Road"));
    }

    void onProjectChanged_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QString>("shown");
        QTest::newRow("text") << QVariant(QStringLiteral("Elm Road")) << true
                              << QStringLiteral("Elm Road");
        QTest::newRow("number") << QVariant(12) << true << QStringLiteral("12");
        QTest::newRow("empty") << QVariant(QStringLiteral("")) << true << QString();
        QTest::newRow("database null") << QVariant(QVariant::String) << true << QString();
        QTest::newRow("unknown column") << QVariant() << true << QStringLiteral("Project");
        QTest::newRow("invalid record")
            << QVariant(QStringLiteral("Elm Road")) << false << QStringLiteral("Project");
    }

    void onProjectChanged()
    {
        QFETCH(QVariant, value);
        QFETCH(bool, valid);
        QFETCH(QString, shown);
        show(QStringLiteral("PRJ_Name"));
        m_datasource->setValue(QStringLiteral("before"));
        m_project->values.insert(QStringLiteral("PRJ_Name"), value);
        m_project->valid = valid;

        AppStateControl::setActiveProject(m_project);

        QCOMPARE(m_element->text(), shown);
        QCOMPARE(takeLog(), QStringList());
    }

    void projectClosed()
    {
        AppStateControl::setActiveProject(m_project);
        show(QStringLiteral("PRJ_Name"));
        AppStateControl::setActiveProject({});
        QCOMPARE(m_element->text(), QStringLiteral("Project"));
    }

    void theElementsOwnCaptionIsMeant()
    {
        show(QStringLiteral("PRJ_Name"));
        m_element->setCaption(QStringLiteral("Edited"));
        m_datasource->onProjectChanged({});
        QCOMPARE(m_element->text(), QStringLiteral("Edited"));
    }

    void inspectionsAndObservationsDoNotMatter()
    {
        AppStateControl::setActiveProject(m_project);
        show(QStringLiteral("PRJ_Name"));
        m_project->values.insert(QStringLiteral("PRJ_Name"), QStringLiteral("Oak Road"));
        AppStateControl::setActiveInspection({});
        AppStateControl::announceObservation({});
        QCOMPARE(m_element->text(), QStringLiteral("Elm Road"));
    }

    void setValue()
    {
        show(QStringLiteral("PRJ_Name"));
        m_datasource->setValue(QStringLiteral("two words"));
        QCOMPARE(m_element->text(), QStringLiteral("two words"));
    }

    void itEndsWithItsElement()
    {
        show(QStringLiteral("PRJ_Name"));
        m_element.reset();
        AppStateControl::setActiveProject(m_project);
        QCOMPARE(takeLog(), QStringList());
    }

protected:
    void prepare() override
    {
        AppStateControl::setActiveProject({});
        m_project = QSharedPointer<TestRecord>::create(Kind::Project);
        m_project->values.insert(QStringLiteral("PRJ_Name"), QStringLiteral("Elm Road"));
        m_element.reset();
    }

private:
    static ElementParam record(const QString &column)
    {
        ElementParam param;
        param.insert(QStringLiteral("type"), int(CVideoOverlayElement::StaticText));
        param.insert(QStringLiteral("row"), 4);
        param.insert(QStringLiteral("columnBound"), column);
        param.insert(QStringLiteral("text"), QStringLiteral("from the record"));
        param.insert(QStringLiteral("caption"), QStringLiteral("Project"));
        param.insert(QStringLiteral("backgroundColor"), QColor(1, 2, 3));
        param.insert(QStringLiteral("textColor"), QColor(4, 5, 6));
        param.insert(QStringLiteral("enabled"), true);
        return param;
    }

    void show(const QString &column)
    {
        m_element = std::make_unique<CVideoOverlayText>();
        ElementParam param = record(column);
        m_datasource = new COsdDomainStaticTextDatasource(m_element.get(), param);
    }

    QSharedPointer<TestRecord> m_project;
    std::unique_ptr<CVideoOverlayText> m_element;
    COsdDomainStaticTextDatasource *m_datasource = nullptr; ///< a child of the element
};

QTEST_MAIN(tst_COsdDomainStaticTextDatasource)
#include "tst_COsdDomainStaticTextDatasource.moc"
