#include "upload/VextilOnceOnlyBody.h"

#include <gtest/gtest.h>

namespace {

TEST(VextilOnceOnlyBody, IsReadWholeOnceAndRewindsOnlyWhileUntouched)
{
    const QByteArray text = QByteArray("--boundary\r\n").repeated(1000);
    VextilOnceOnlyBody body(text);
    EXPECT_TRUE(body.isSequential());
    EXPECT_EQ(body.bytesAvailable(), text.size());
    EXPECT_TRUE(body.reset()) << "nothing has gone out yet";

    QByteArray read;
    char chunk[4096];
    for (qint64 count; (count = body.read(chunk, sizeof chunk)) > 0;)
        read.append(chunk, count);
    EXPECT_EQ(read, text);
    EXPECT_EQ(body.read(chunk, sizeof chunk), -1) << "the end of a sequential body";
    EXPECT_TRUE(body.atEnd());
    EXPECT_FALSE(body.reset());
    EXPECT_FALSE(body.seek(0));
    EXPECT_EQ(body.read(chunk, sizeof chunk), -1) << "still nothing after a refused rewind";

    VextilOnceOnlyBody started(text);
    EXPECT_EQ(started.read(chunk, 1), 1);
    EXPECT_FALSE(started.reset()) << "one byte is enough to refuse";
    EXPECT_EQ(started.bytesAvailable(), text.size() - 1);
}

}  // namespace
