#pragma once

#include <QAbstractItemModelTester>
#include <QStringList>

#include <memory>

namespace tarnwick::test {

/// Watches a model with QAbstractItemModelTester for as long as it lives: the model's
/// structure is checked at once and again after every signal the model sends. Whatever the
/// tester finds wrong is collected in failures() (the tester reports through Qt's log).
class ModelCheck
{
public:
    explicit ModelCheck(QAbstractItemModel *model);
    ~ModelCheck();
    ModelCheck(const ModelCheck &) = delete;
    ModelCheck &operator=(const ModelCheck &) = delete;

    QStringList failures() const;

private:
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

} // namespace tarnwick::test
