// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// The fields that each class itself declares, in order, from the compiler's record layouts.
/// A line is an offset, a bar, two blanks per level of nesting, type and name.
QHash<QString, QStringList> fieldsByClass(const QStringList &lines)
{
    static const QRegularExpression head(
        QStringLiteral(R"(^\s+0 \| (?:class|struct) Velmar::VideoOverlay::(\w+)$)"));
    // directly below the class, and no base: those carry a remark in brackets
    static const QRegularExpression field(QStringLiteral(R"(^[\s\d:-]+\|   (?! )(.+?) ?(\w+)$)"));
    QHash<QString, QStringList> fields;
    QString current;
    for (const QString &line : lines) {
        if (line.contains(QLatin1String("*** Dumping"))) {
            current.clear();
        } else if (const auto match = head.match(line); match.hasMatch()) {
            current = match.captured(1);
            fields[current]; // also where it declares none
        } else if (const auto member = field.match(line); member.hasMatch() && !current.isEmpty()) {
            fields[current].append(member.captured(2));
        }
    }
    return fields;
}

/// The operations in the slots of each virtual table, in order, without those of QObject.
QHash<QString, QStringList> slotsByClass(const QStringList &lines)
{
    static const QRegularExpression head(QStringLiteral(R"(^Vtable for '(?:.*::)?(\w+)')"));
    static const QRegularExpression slot(
        QStringLiteral(R"(^\s+\d+ \| .*?(\w+)::(~?\w+)\((.*)\)( const)?(?: \[.*\])?$)"));
    QHash<QString, QStringList> operations;
    QString current;
    for (const QString &line : lines) {
        if (const auto match = head.match(line); match.hasMatch()) {
            current = match.captured(1);
            operations[current];
        } else if (line.startsWith(QLatin1String("VTable indices"))) {
            current.clear();
        } else if (const auto entry = slot.match(line); entry.hasMatch() && !current.isEmpty()) {
            const QString name = entry.captured(2);
            const QStringList ofQObject
                = words("metaObject qt_metacast qt_metacall event eventFilter timerEvent "
                        "childEvent customEvent connectNotify disconnectNotify");
            if (!ofQObject.contains(name) && !name.startsWith(QLatin1Char('~')))
                operations[current].append(entry.captured(1) + QLatin1String("::") + name
                                           + entry.captured(4).trimmed());
        }
    }
    return operations;
}

} // namespace

/// Order of fields and of virtual operations: what programs that were built against an older
/// version of the library rely on.
class tst_layout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QProcess compiler;
        compiler.setProcessChannelMode(QProcess::MergedChannels);
        compiler.start(QStringLiteral(LAYOUT_COMPILER),
                       {QStringLiteral("-std=c++17"), QStringLiteral("-fPIC"), QStringLiteral("-w"),
                        QStringLiteral("@" LAYOUT_ARGUMENTS), QStringLiteral("-Xclang"),
                        QStringLiteral("-fdump-record-layouts"), QStringLiteral("-Xclang"),
                        QStringLiteral("-fdump-vtable-layouts"), QStringLiteral("-S"),
                        QStringLiteral("-emit-llvm"), QStringLiteral("-o"),
                        QStringLiteral("/dev/null"), QStringLiteral(LAYOUT_SOURCE)});
        QVERIFY2(compiler.waitForFinished(100000), qPrintable(compiler.errorString()));
        const QString output = QString::fromUtf8(compiler.readAll());
        QVERIFY2(compiler.exitCode() == 0, qPrintable(output.right(4000)));
        const QStringList lines = output.split(QLatin1Char('\n'));
        m_fields = fieldsByClass(lines);
        m_slots = slotsByClass(lines);
    }

    void fields_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QStringList>("fields");

        QTest::newRow("element") << "CVideoOverlayElement"
                                 << words("m_mutex m_deleteOnExpiry m_x m_y m_id m_row m_column "
                                          "m_visible m_captionVisible m_caption m_type m_width "
                                          "m_height m_timeout m_enabled m_timer m_remaining "
                                          "m_timeoutDisabled m_transparency m_temporaryHide "
                                          "m_maxLineNumber m_settings m_params m_groupMutex "
                                          "m_runningEdits m_deleteWhenIdle");
        QTest::newRow("text") << "CVideoOverlayText"
                              << words("m_text m_lines m_unit m_textColor m_backgroundColor m_font "
                                       "m_fontMetrics m_alignment m_gridConnection "
                                       "m_isTooLarge");
        QTest::newRow("image") << "CVideoOverlayImage"
                               << words("m_imageSrc m_scaleFactor m_sourceImage m_scaledImage");
        QTest::newRow("rendered element") << "RenderedElement"
                                          << words("m_id m_type m_x m_y m_visible m_repaint "
                                                   "m_image");
        QTest::newRow("parameters") << "ElementParam" << QStringList();
        QTest::newRow("settings") << "VideoOverlaySettings"
                                  << words("m_capabilities m_columns m_rows m_width m_height "
                                           "m_font m_colWidth m_rowHeight m_leftMargin "
                                           "m_topMargin m_mutex");
        QTest::newRow("capabilities") << "CVideoOverlayCapabilities" << words("m_backend");
        QTest::newRow("control") << "CVideoOverlayControl" << words("m_renderDisabled m_backend");
        QTest::newRow("capabilities backend")
            << "CAbstractVideoOverlayCapabilitiesBackend" << QStringList();
        QTest::newRow("control backend") << "CAbstractVideoOverlayControlBackend" << QStringList();
        QTest::newRow("caption resolver") << "CaptionResolver" << QStringList();
        QTest::newRow("template caption resolver")
            << "TemplateCaptionResolver" << words("m_templates m_templateId m_template");
        QTest::newRow("dictionary caption resolver")
            << "DictCaptionResolver" << words("m_captions m_dictionary");
        QTest::newRow("datasource") << "COsdElementDatasource" << words("m_params m_element");
        QTest::newRow("text datasource")
            << "COsdTextDatasource"
            << words("m_caption m_value m_suffix m_captionResolver m_unitsProvider");
        QTest::newRow("value datasource") << "COsdValueDatasource" << QStringList();
        QTest::newRow("static text datasource") << "COsdStaticTextDatasource" << words("m_text");
        QTest::newRow("image datasource") << "COsdImageDatasource" << QStringList();
        QTest::newRow("snip datasource") << "COsdScreenSnipDatasource" << QStringList();
        QTest::newRow("datasource factory")
            << "CAbstractOsdDatasourceFactory" << words("m_captionResolver m_builder");
        QTest::newRow("image datasource factory") << "COsdImageDatasourceFactory" << QStringList();
        QTest::newRow("element accessor") << "IVideoOverlayElementAccessor" << QStringList();
        QTest::newRow("manager") << "CVideoOverlayManager"
                                 << words("m_control m_watermark m_mutex m_elements "
                                          "m_elementListModel m_elementAccessor m_profilesModel "
                                          "m_favoritesModel m_settings m_globalTransparency "
                                          "m_emitKx70Changes m_generalSettings m_analogVideo "
                                          "m_kx70iiState m_kx70iiCol m_kx70iiRow m_kx70iiUnits "
                                          "m_idsInOrder");
        QTest::newRow("list model")
            << "VideoOverlayElementListModel" << words("m_manager m_freeText");
        QTest::newRow("profile") << "Profile"
                                 << words("m_name m_path m_readOnly m_elements m_changed "
                                          "m_damaged");
        QTest::newRow("profiles manager") << "ProfilesManager" << words("m_directory m_profiles");
        QTest::newRow("profiles model")
            << "VideoOverlayProfilesModel"
            << words("m_manager m_profiles m_currentProfile m_knownDifferences m_shown "
                     "m_recordsOfCopy");
    }

    void fields()
    {
        QFETCH(QString, className);
        QFETCH(QStringList, fields);
        QVERIFY(m_fields.contains(className));
        QCOMPARE(m_fields.value(className), fields);
    }

    void virtualOperations_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QStringList>("operations");

        QTest::newRow("element") << "ElementLayout"
                                 << words("CVideoOverlayElement::height "
                                          "CVideoOverlayElement::width "
                                          "CVideoOverlayElement::unit "
                                          "CVideoOverlayElement::setUnit "
                                          "CVideoOverlayElement::renderIntoconst "
                                          "CVideoOverlayElement::getElementconst "
                                          "CVideoOverlayElement::getAllPropertiesconst "
                                          "CVideoOverlayElement::getChangedPropertiesconst "
                                          "CVideoOverlayElement::applyChangesToOrigParams");
        QTest::newRow("text") << "TextLayout"
                              << words("CVideoOverlayElement::height CVideoOverlayElement::width "
                                       "CVideoOverlayText::unit CVideoOverlayText::setUnit "
                                       "CVideoOverlayText::renderIntoconst "
                                       "CVideoOverlayText::getElementconst "
                                       "CVideoOverlayText::getAllPropertiesconst "
                                       "CVideoOverlayText::getChangedPropertiesconst "
                                       "CVideoOverlayElement::applyChangesToOrigParams");
        QTest::newRow("image") << "ImageLayout"
                               << words("CVideoOverlayElement::height CVideoOverlayElement::width "
                                        "CVideoOverlayElement::unit CVideoOverlayElement::setUnit "
                                        "CVideoOverlayImage::renderIntoconst "
                                        "CVideoOverlayImage::getElementconst "
                                        "CVideoOverlayImage::getAllPropertiesconst "
                                        "CVideoOverlayImage::getChangedPropertiesconst "
                                        "CVideoOverlayElement::applyChangesToOrigParams");
        QTest::newRow("settings") << "SettingsLayout" << QStringList();
        QTest::newRow("capabilities") << "CapabilitiesLayout" << QStringList();
        QTest::newRow("control") << "ControlLayout" << QStringList();
        QTest::newRow("capabilities backend")
            << "CapabilitiesBackendLayout"
            << words("CapabilitiesBackendLayout::maximumColumnCount "
                     "CapabilitiesBackendLayout::maximumRowCount "
                     "CapabilitiesBackendLayout::imageWidth "
                     "CapabilitiesBackendLayout::imageHeight");
        QTest::newRow("control backend")
            << "ControlBackendLayout"
            << words("ControlBackendLayout::isReady ControlBackendLayout::isActive "
                     "ControlBackendLayout::displayElement ControlBackendLayout::deleteElement "
                     "ControlBackendLayout::setPaintMargins "
                     "ControlBackendLayout::videoOverlayEnabled "
                     "ControlBackendLayout::setVideoOverlayEnabled "
                     "ControlBackendLayout::prepareOverlay");
        QTest::newRow("caption resolver") << "CaptionResolverLayout"
                                          << words("CaptionResolverLayout::getCaptionconst "
                                                   "CaptionResolverLayout::setTemplate");
        QTest::newRow("template caption resolver")
            << "TemplateResolverLayout"
            << words("TemplateCaptionResolver::getCaptionconst "
                     "TemplateCaptionResolver::setTemplate");
        QTest::newRow("dictionary caption resolver")
            << "DictResolverLayout"
            << words("DictCaptionResolver::getCaptionconst TemplateCaptionResolver::setTemplate");
        QTest::newRow("datasource") << "ElementDatasourceLayout" << QStringList();
        QTest::newRow("text datasource")
            << "TextDatasourceLayout" << words("COsdTextDatasource::calculateCaption");
        QTest::newRow("value datasource")
            << "ValueDatasourceLayout"
            << words("COsdTextDatasource::calculateCaption COsdValueDatasource::update");
        QTest::newRow("static text datasource") << "StaticDatasourceLayout" << QStringList();
        QTest::newRow("image datasource") << "ImageDatasourceLayout" << QStringList();
        QTest::newRow("snip datasource") << "SnipDatasourceLayout" << QStringList();
        QTest::newRow("datasource factory")
            << "FactoryLayout" << words("FactoryLayout::accept FactoryLayout::buildDatasource");
        QTest::newRow("image datasource factory")
            << "ImageFactoryLayout"
            << words("COsdImageDatasourceFactory::accept "
                     "COsdImageDatasourceFactory::buildDatasource");
        QTest::newRow("element accessor")
            << "AccessorLayout"
            << words("AccessorLayout::makeKey AccessorLayout::registerElement "
                     "AccessorLayout::unregisterElement");
        QTest::newRow("manager") << "ManagerLayout" << QStringList();
        QTest::newRow("profile") << "ProfileLayout" << QStringList();
        QTest::newRow("profiles manager") << "ProfilesManagerLayout" << QStringList();
    }

    void virtualOperations()
    {
        QFETCH(QString, className);
        QFETCH(QStringList, operations);
        QVERIFY(m_slots.contains(className));
        QCOMPARE(m_slots.value(className), operations);
    }

private:
    QHash<QString, QStringList> m_fields;
    QHash<QString, QStringList> m_slots;
};

QTEST_GUILESS_MAIN(tst_layout)
#include "tst_layout.moc"
