// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QAbstractListModel>
#include <QStringList>

namespace Velmar::Shared {

/// A list of texts for a screen, such as the operator's favourites. A text may have several lines.
class VELMAR_PLATFORM_EXPORT QmlStringListModel : public QAbstractListModel
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QStringList stringList READ stringList WRITE setStringList NOTIFY stringListChanged)
    Q_PROPERTY(int maxLineNumber READ maxLineNumber WRITE setMaxLineNumber NOTIFY maxLineNumberChanged)
    // clang-format on

public:
    enum Role {
        TextRole = Qt::UserRole, ///< "text"
    };
    Q_ENUM(Role)

    explicit QmlStringListModel(QObject *parent = nullptr);
    ~QmlStringListModel() override;

    QStringList stringList() const;
    void setStringList(const QStringList &texts);

    /// Largest number of lines that a screen should let the operator give a text; 0: not limited.
    /// The texts in the list are not cut.
    int maxLineNumber() const;
    void setMaxLineNumber(int lines);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE bool append(const QString &text); ///< false, and nothing happens, for an empty text
    Q_INVOKABLE bool remove(int row);             ///< false for a row out of range

Q_SIGNALS:
    void stringListChanged();
    void maxLineNumberChanged();

private:
    QStringList m_texts;
    int m_maxLineNumber = 0;
};

} // namespace Velmar::Shared
