#pragma once
// A transaction on one Connection that cannot be left half-way: the guard begins it, and
// unless commit() or rollback() ran, its destructor rolls it back (an exception, an early
// return). The saves keep their visible order of BeginTrans / CommitTrans / RollbackTrans
// by calling commit() and rollback() where the handler does.
//
//     adodb::Transaction tx(conn);      // BeginTrans
//     ... statements ...
//     tx.commit();                      // CommitTrans
//
// A rollback in the destructor never throws: a connection already gone leaves nothing to
// undo, and the error that unwinds the stack is the one worth reporting.

#include "platform/adodb.h"

namespace adodb {

class Transaction {
public:
    explicit Transaction(Connection& conn) : m_conn(conn) {
        m_conn.BeginTrans();
        m_open = true;
    }
    ~Transaction() {
        if (!m_open) return;
        try {
            m_conn.RollbackTrans();
        } catch (const std::exception&) {
            // the unwinding error is the one that counts (see above)
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit() {
        m_open = false;
        m_conn.CommitTrans();
    }
    void rollback() {
        m_open = false;
        m_conn.RollbackTrans();
    }
    bool isOpen() const { return m_open; }

private:
    Connection& m_conn;
    bool m_open = false;
};

} // namespace adodb
