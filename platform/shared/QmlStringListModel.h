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
    /// All texts, in their order.
    Q_PROPERTY(QStringList stringList READ stringList WRITE setStringList NOTIFY stringListChanged)
    /// Largest number of lines of a text; 0: not limited.
    Q_PROPERTY(int maxLineNumber READ maxLineNumber WRITE setMaxLineNumber NOTIFY maxLineNumberChanged)
    // clang-format on

public:
    /// What data() gives.
    enum Role {
        TextRole = Qt::UserRole, ///< "text"
    };
    Q_ENUM(Role)

    /// An empty list.
    explicit QmlStringListModel(QObject *parent = nullptr);
    ~QmlStringListModel() override;

    /// All texts, in their order.
    QStringList stringList() const;
    /// Resets the model and emits stringListChanged when they differ.
    void setStringList(const QStringList &texts);

    /// Largest number of lines that a screen should let the operator give a text; 0: not limited.
    /// The texts in the list are not cut.
    int maxLineNumber() const;
    /// Emits maxLineNumberChanged when it differs.
    void setMaxLineNumber(int lines);

    /// How many texts there are.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /// The text of a row, for display, for editing and under "text"; else invalid.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Replaces the text of a row; false for a row out of range.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /// The one role by its name.
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE bool append(const QString &text); ///< false, and nothing happens, for an empty text
    Q_INVOKABLE bool remove(int row);             ///< false for a row out of range

Q_SIGNALS:
    /// Some text is another one, or the list is longer or shorter.
    void stringListChanged();
    /// Another largest number of lines.
    void maxLineNumberChanged();

private:
    QStringList m_texts;
    int m_maxLineNumber = 0;
};

} // namespace Velmar::Shared
