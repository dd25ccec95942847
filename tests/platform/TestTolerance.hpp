// Tolerance comparisons for the platform tests that print both values when they fail.
#pragma once

#include <QString>
#include <QtTest>
#include <cmath>

// Passes when |actual - expected| <= tolerance.
#define VERIFY_NEAR(actual, expected, tolerance)                              \
    do {                                                                      \
        const double actualValue_ = static_cast<double>(actual);              \
        const double expectedValue_ = static_cast<double>(expected);          \
        const double tolerance_ = static_cast<double>(tolerance);             \
        QVERIFY2(std::abs(actualValue_ - expectedValue_) <= tolerance_,       \
                 qPrintable(QStringLiteral("%1 is %2, expected %3 within %4") \
                                .arg(QStringLiteral(#actual))                 \
                                .arg(actualValue_, 0, 'g', 12)                \
                                .arg(expectedValue_, 0, 'g', 12)              \
                                .arg(tolerance_, 0, 'g', 6)));                \
    } while (false)

// Passes when actual < limit.
#define VERIFY_BELOW(actual, limit)                                                               \
    do {                                                                                          \
        const double actualValue_ = static_cast<double>(actual);                                  \
        const double limit_ = static_cast<double>(limit);                                         \
        QVERIFY2(actualValue_ < limit_, qPrintable(QStringLiteral("%1 is %2, must stay below %3") \
                                                       .arg(QStringLiteral(#actual))              \
                                                       .arg(actualValue_, 0, 'g', 12)             \
                                                       .arg(limit_, 0, 'g', 12)));                \
    } while (false)
