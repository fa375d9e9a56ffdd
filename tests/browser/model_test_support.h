#pragma once

#include <QAbstractItemModel>
#include <QAbstractItemModelTester>
#include <QStringList>
#include <QtGlobal>
#include <memory>

namespace tltest {

// Qt's model tester on a model, its complaints collected instead of
// printed, and the model's signals counted by kind.
class CheckedModel
{
public:
    explicit CheckedModel(QAbstractItemModel *model) : m_model(model)
    {
        complaints().clear();
        m_previous = qInstallMessageHandler(&collect);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            model, QAbstractItemModelTester::FailureReportingMode::Warning);
        const auto count = [this](int &counter) { return [&counter] { ++counter; }; };
        QObject::connect(model, &QAbstractItemModel::rowsInserted, count(inserted));
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, count(removed));
        QObject::connect(model, &QAbstractItemModel::rowsMoved, count(moved));
        QObject::connect(model, &QAbstractItemModel::dataChanged, count(changed));
        QObject::connect(model, &QAbstractItemModel::modelReset, count(resets));
        QObject::connect(model, &QAbstractItemModel::layoutChanged, count(layouts));
    }
    ~CheckedModel()
    {
        m_tester.reset();
        qInstallMessageHandler(m_previous);
    }
    CheckedModel(const CheckedModel &) = delete;
    CheckedModel &operator=(const CheckedModel &) = delete;

    // What the tester found wrong so far.
    static QStringList &complaints()
    {
        static QStringList list;
        return list;
    }
    void resetCounts() { inserted = removed = moved = changed = resets = layouts = 0; }

    int inserted = 0;
    int removed = 0;
    int moved = 0;
    int changed = 0;
    int resets = 0;
    int layouts = 0;

private:
    static void collect(QtMsgType type, const QMessageLogContext &, const QString &message)
    {
        if (type != QtDebugMsg && type != QtInfoMsg)
            complaints() << message;
    }

    QAbstractItemModel *m_model;
    QtMessageHandler m_previous = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

} // namespace tltest
