#pragma once

#include <database/LocalDB.h>

#include <functional>

/// A file with three steps, each of which makes and fills a table and rewrites the rows of the first one.
///
/// The connection ends with the object, so that the next one opens the file anew, as a new process would.
class CLadder : public CLocalDB
{
public:
    explicit CLadder(const QString &path, unsigned int maxVersion = 3, bool fileRequired = false)
        : CLocalDB(path, fileRequired, false)
        , m_strPath(path)
        , m_uiMaxVersion(maxVersion)
    {
    }
    ~CLadder() override { QSqlDatabase::removeDatabase(m_strPath); }

    unsigned int m_uiFailingStep = 0; ///< does its work, then answers false
    int m_iRows = 3;                  ///< rows that a step inserts
    QString m_strText = QStringLiteral("text");
    std::function<void()> m_Inserted = [] {};
    QList<unsigned int> m_steps; ///< those that ran

    bool Fill(const QString &table)
    {
        bool done = true;
        for (int row = 0; row < m_iRows; ++row) {
            done &= Insert(table, {{QStringLiteral("text"), m_strText}});
            m_Inserted();
        }
        return done && Update(QStringLiteral("tbl_step1"), {{QStringLiteral("text"), m_strText + table}}, {});
    }

protected:
    unsigned int GetMaxVersion() override { return m_uiMaxVersion; }

    bool CreateDBVersion(unsigned int version) override
    {
        m_steps.append(version);
        const QString table = QStringLiteral("tbl_step%1").arg(version);
        return CreateTable(QStringLiteral("CREATE TABLE %1 (id INTEGER PRIMARY KEY, text TEXT)").arg(table), table) &&
               Fill(table) && version != m_uiFailingStep;
    }

private:
    QString m_strPath;
    unsigned int m_uiMaxVersion;
};
