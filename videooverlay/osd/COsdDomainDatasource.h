// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/database/CDomainObject.h"
#include "videooverlay/osd/COsdTextDatasource.h"

#include <QSet>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Velmar::Templates {
class CCatalogTemplate;
class CTemplateColumn;
} // namespace Velmar::Templates

namespace Velmar::VideoOverlay {

/// A text that shows one column of the inspection database: "columnBound" in the table "TDIR_Key"
/// of the catalog template. Its factory connects it to whatever makes its value new. The prefix of
/// the column's name tells which record holds it; "columnBound" may be a path of names joined by
/// ".", and then the last name tells. Names before it are foreign keys that lead from that record
/// to the one that is read.
///
/// All of them share the record that was handed to any of them last. It is kept beyond the end of
/// every datasource: a host that closes its database calls calculateValue() with null before.
class XQVIDEOOVERLAY_EXPORT COsdDomainDatasource : public COsdTextDatasource
{
    Q_OBJECT
public:
    /// Shows the value of the shared record at once.
    COsdDomainDatasource(QSharedPointer<TemplateCaptionResolver> resolver, CVideoOverlayText *text,
                         ElementParam &param);
    ~COsdDomainDatasource() override;

    /// The program views of a catalog template whose columns may be shown over the video.
    static const QSet<QString> &allowedProgramViews();

    /// Where the catalog template comes from; set by the builder, null before.
    static QSharedPointer<TemplateCaptionResolver> captionResolver;

    QString getColumnName() const;      ///< "columnBound", with its path
    QString getColumnTableName() const; ///< "TDIR_Key"

    /// The shared record: an inspection or, after an observation, that observation. May be null.
    static Velmar::Database::CDomainObjectPointer currentInspection();
    /// Remembers the record for all; null forgets it.
    static void rememberDomainObject(const Velmar::Database::CDomainObjectPointer &object);

    /// Null, and a line in the log, while none is loaded.
    QSharedPointer<Velmar::Templates::CCatalogTemplate> getCatalogTemplate() const;
    /// Null, and a line in the log, when the template has no such column.
    const Velmar::Templates::CTemplateColumn *getTemplateColumn(const QString &table,
                                                                const QString &column) const;

    /// The record that holds the column at the end of @p path, and in @p column what to read from
    /// it. Null, and a line in the log, when there is none.
    Velmar::Database::CDomainObjectPointer findParentSource(const QStringList &path,
                                                            QString &column) const;
    /// The value at the end of @p path; the text "<not source>" without a record to read from.
    QVariant readValueFromSourceObject(const QStringList &path) const;
    /// Logs what came out of reading and returns @p value as it is.
    QVariant validateValue(const QVariant &value) const;
    /// The caption of the list item that @p value names; empty unless the column is a list that
    /// has such an item.
    QString fetchColumnDatasource(const Velmar::Templates::CCatalogTemplate &catalogTemplate,
                                  const QVariant &value) const;
    /// The caption of the list item whose stored value this is; empty, with a line in the log, when
    /// the column has no list.
    QString getListDetailsCaption(const Velmar::Templates::CCatalogTemplate &catalogTemplate,
                                  const QVariant &value) const;
    /// A date or time as the user writes it; what is neither, or cannot be read, as it is.
    QString formatColumnValue(const QString &text) const;
    /// Puts the memo after the text of an observation.
    QString appendPostfix(const QString &text) const;

public Q_SLOTS:
    /// Makes @p object the shared record and shows its value; a single blank for null.
    void calculateValue(Velmar::Database::CDomainObjectPointer object);

private:
    QString formatDate(const QString &text) const;
    QString formatTime(const QString &text) const;

    static Velmar::Database::CDomainObjectPointer m_currentInspection;
};

} // namespace Velmar::VideoOverlay
