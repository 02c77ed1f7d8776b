#include <limits>
#include <string>

#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

using Step = SqliteStatement::Step;
using ColumnType = SqliteStatement::ColumnType;

TEST(SqliteDatabaseTest, TypedValuesSurviveTheRoundTripExactly) {
    test::TempDir dir;
    SqliteError error;
    auto db = SqliteDatabase::open(dir.file("t.sqlite"), &error);
    ASSERT_TRUE(db) << error.message;
    ASSERT_TRUE(db->execute("CREATE TABLE t (i INTEGER, r REAL, s TEXT, b BLOB, n TEXT)", &error));

    const std::string text("nul\0inside é", 13);
    const std::string bytes("\x00\xff\x01", 3);
    auto insert = db->prepare("INSERT INTO t VALUES (?1, ?2, ?3, ?4, ?5)", &error);
    ASSERT_TRUE(insert);
    insert->bindInt64(1, std::numeric_limits<std::int64_t>::min());
    insert->bindDouble(2, 0.1);
    insert->bindText(3, text);
    insert->bindBlob(4, bytes);
    insert->bindNull(5);
    ASSERT_EQ(insert->step(&error), Step::done) << error.message;
    EXPECT_EQ(db->lastInsertRowId(), 1);

    auto select = db->prepare("SELECT i, r, s, b, n FROM t");
    ASSERT_EQ(select->step(), Step::row);
    EXPECT_EQ(select->columnCount(), 5);
    EXPECT_EQ(select->columnType(0), ColumnType::integer);
    EXPECT_EQ(select->columnInt64(0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(select->columnType(1), ColumnType::real);
    EXPECT_EQ(select->columnDouble(1), 0.1);
    EXPECT_EQ(select->columnText(2), text);
    EXPECT_EQ(select->columnType(3), ColumnType::blob);
    EXPECT_EQ(select->columnBlob(3), bytes);
    EXPECT_TRUE(select->columnIsNull(4));
    EXPECT_EQ(select->columnName(2), "s");
    EXPECT_EQ(select->step(), Step::done);
}

TEST(SqliteDatabaseTest, FailuresComeBackWithSqlitesCodeAndMessage) {
    test::TempDir dir;
    SqliteError error;
    auto db = SqliteDatabase::open(dir.file("t.sqlite"), &error);
    ASSERT_TRUE(db);

    EXPECT_FALSE(db->prepare("SELEKT 1", &error));
    EXPECT_EQ(error.code, 1);
    EXPECT_NE(error.message.find("syntax error"), std::string::npos) << error.message;

    ASSERT_TRUE(db->execute("CREATE TABLE t (v INTEGER UNIQUE); INSERT INTO t VALUES (1)"));
    auto insert = db->prepare("INSERT INTO t VALUES (1)");
    EXPECT_EQ(insert->step(&error), Step::error);
    EXPECT_EQ(error.code, 19);  // a constraint
    EXPECT_FALSE(db->execute("INSERT INTO nowhere VALUES (1)", &error));
    EXPECT_NE(error.message.find("no such table"), std::string::npos);
}

TEST(SqliteDatabaseTest, StatementOutlivingItsDatabaseTurnsInert) {
    test::TempDir dir;
    auto db = SqliteDatabase::open(dir.file("t.sqlite"), nullptr);
    auto statement = db->prepare("SELECT 1");
    db.reset();  // closes the file although a statement is alive

    SqliteError error;
    statement->bindInt64(1, 5);
    EXPECT_EQ(statement->step(&error), Step::error);
    EXPECT_EQ(statement->columnCount(), 0);
    statement->reset();
}

TEST(SqliteDatabaseTest, TransactionsShowInTheConnectionState) {
    test::TempDir dir;
    auto db = SqliteDatabase::open(dir.file("t.sqlite"), nullptr);
    EXPECT_FALSE(db->inTransaction());
    ASSERT_TRUE(db->execute("BEGIN"));
    EXPECT_TRUE(db->inTransaction());
    ASSERT_TRUE(db->execute("ROLLBACK"));
    EXPECT_FALSE(db->inTransaction());
}

}  // namespace
}  // namespace tb
