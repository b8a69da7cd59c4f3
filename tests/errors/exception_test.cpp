#include "errors/exception.h"

#include <gtest/gtest.h>

#include "errors/bsr_modular_check.h"
#include "errors/convolution_exceptions.h"
#include "errors/far_memory_out_of_bounds.h"
#include "errors/file_exception.h"
#include "errors/os_errors.h"
#include "errors/std_exception.h"
#include "errors/system_exception.h"
#include "support/console.h"

namespace {

using kelvara_test::printed_by;

std::string printed(const qmp::Exception& exception) {
    return printed_by([&] { exception.print(); });
}

TEST(ExceptionPrint, TextNamesTheFunction) {
    EXPECT_EQ(printed(qmp::StringException("BigFloat::set_BigFloat()", "Something is wrong.")),
              "\nException Encountered: StringException\n\n"
              "In Function: BigFloat::set_BigFloat()\n\nSomething is wrong.\n\n");
}

TEST(ExceptionPrint, TextWithoutFunctionHasNoFunctionLine) {
    EXPECT_EQ(printed(qmp::InvalidParametersException("", "Invalid.")),
              "\nException Encountered: InvalidParametersException\n\nInvalid.\n\n");
}

TEST(ExceptionPrint, ConvolutionFailurePrintsAsText) {
    EXPECT_EQ(printed(qmp::ConvolutionFailedException("f()", "Coefficient is too large.", 5, 6)),
              "\nException Encountered: ConvolutionFailedException\n\n"
              "In Function: f()\n\nCoefficient is too large.\n\n");
}

TEST(ExceptionPrint, ModularCheckListsEveryDifference) {
    EXPECT_EQ(printed(kelvara::BSRModularCheckFailedException(
                  "qcb_Verify_BSR()", "Modular Redundancy Check Failed", 10, 20, {7, 8})),
              "\nException Encountered: BSRModularCheckFailedException\n\n"
              "In Function: qcb_Verify_BSR()\n\nModular Redundancy Check Failed\n"
              "    a =             10\n"
              "    b =             20\n"
              "    hash[0] =       7\n"
              "    hash[1] =       8\n\n");
}

TEST(ExceptionPrint, BufferTooSmall) {
    EXPECT_EQ(printed(qmp::BufferTooSmallException("f()", 10, 18446744073709551615u)),
              "\nException Encountered: BufferTooSmallException\n\nBuffer is too small:\n"
              "    Function: f()\n    Buffer Size: 10\n    Required Size: 18446744073709551615\n\n");
}

TEST(ExceptionPrint, ConvolutionTooSmall) {
    EXPECT_EQ(printed(qmp::ConvolutionTooSmallException("f()", 64, 128)),
              "\nException Encountered: ConvolutionTooSmallException\n\nLimit Exceeded:\n"
              "    Function: f()\n    Convolution Size: 64\n    Requested Size: 128\n\n");
}

TEST(ExceptionPrint, LimitExceeded) {
    EXPECT_EQ(printed(qmp::LimitExceededException("f()", 3, 4)),
              "\nException Encountered: LimitExceededException\n\nLimit Exceeded:\n"
              "    Function: f()\n    Limit: 3\n    Attempted: 4\n\n");
}

TEST(ExceptionPrint, UnknownLimitAndEmptyFunction) {
    EXPECT_EQ(printed(qmp::LimitExceededException("", 0, 4)),
              "\nException Encountered: LimitExceededException\n\nLimit Exceeded:\n"
              "    Limit: Unknown\n    Attempted: 4\n\n");
}

TEST(ExceptionPrint, FarMemoryOutOfBounds) {
    EXPECT_EQ(printed(qmp::FarMemoryOutOfBoundsException("f()", 100, 90, 20)),
              "\nException Encountered: FarMemoryOutOfBoundsException\n\n"
              "Out-of-Bounds Access on FarMemory object:\n"
              "    Function: f()\n    Object Size: 100\n    Access Offset: 90\n    Access Length: 20\n\n");
}

TEST(ExceptionPrint, FileFailureWithAllFields) {
    EXPECT_EQ(printed(qmp::FileIO::FileException("f()", "Unable to open file.", "a/b.txt", 2)),
              "\nException Encountered: FileException\n\n"
              "In Function: f()\nError Code: 2\nPath: a/b.txt\n\nUnable to open file.\n\n");
}

TEST(ExceptionPrint, FileFailureLeavesOutEmptyFunctionAndZeroCode) {
    EXPECT_EQ(printed(Ordalis::InconsistentMetaData("", "Bad.", "x", 0)),
              "\nException Encountered: InconsistentMetaData\n\nPath: x\n\nBad.\n\n");
}

TEST(ExceptionPrint, BothRaidClassesShareOneHeading) {
    EXPECT_EQ(
        printed(qmp::R03::Raid03Exception("", "Read Fault", "d/", 30)),
        "\nRaid03 Exception Encountered: Raid03Exception\n\nError Code: 30\nPath: d/\n\nRead Fault\n\n");
    EXPECT_EQ(printed(qmp::DiskRaid0::Raid0Exception("", "Read Fault", "d/", 30)),
              "\nRaid03 Exception Encountered: Raid0Exception\n\nError Code: 30\nPath: d/\n\nRead Fault\n\n");
}

TEST(ExceptionPrint, SystemFailurePrintsItsCodeEvenWhenZero) {
    EXPECT_EQ(
        printed(qmp::SystemException("CreateThreadpoolWork()", "Unable to create thread pool work.", 0)),
        "\nSystem Exception Encountered: SystemException\n\n"
        "In Function: CreateThreadpoolWork()\nError Code: 0\nUnable to create thread pool work.\n\n");
}

TEST(ExceptionPrint, WrappedStandardException) {
    EXPECT_EQ(printed(qmp::StdException(std::runtime_error("out of luck"))),
              "\nException Encountered: StdException\n\nout of luck\n\n");
}

TEST(Exception, ThrowsItselfAsItsDynamicType) {
    const qmp::UnsupportedZeroException zero("f()", "Zero.");
    const qmp::Exception& base = zero;
    EXPECT_THROW(base.throw_this(), qmp::UnsupportedZeroException);
    const Ordalis::InconsistentMetaData meta("f()", "m", "p", 1);
    const qmp::Exception& file = meta;
    EXPECT_THROW(file.throw_this(), Ordalis::InconsistentMetaData);
}

TEST(Exception, ClonesItselfAsItsDynamicType) {
    const kelvara::BSRModularCheckFailedException original("f()", "m", 1, 2, {3});
    const std::unique_ptr<qmp::Exception> copy = original.clone();
    const auto* same = dynamic_cast<const kelvara::BSRModularCheckFailedException*>(copy.get());
    ASSERT_NE(same, nullptr);
    EXPECT_EQ(same->hash(), (std::vector<std::uint64_t>{3}));
    EXPECT_STREQ(copy->get_name(), "BSRModularCheckFailedException");
}

// Derived must be caught where Base is, and nowhere else.
TEST(Exception, ClassTree) {
    EXPECT_THROW(throw qmp::TransformTooSmallException("", ""), qmp::InvalidParametersException);
    EXPECT_THROW(throw qmp::ConvolutionTooSmallException("", 1, 2), qmp::InvalidTransformException);
    EXPECT_THROW(throw qmp::ConvolutionFailedException("", "", 1, 2), qmp::AlgorithmFailedException);
    EXPECT_THROW(throw kelvara::BSRModularCheckFailedException("", "", 1, 2, {}), qmp::StringException);
    EXPECT_THROW(throw qmp::UnsupportedNegativeException("", ""), qmp::UnsupportedValueException);
    EXPECT_THROW(throw Ordalis::InconsistentMetaData("", "", ""), qmp::FileIO::FileException);
    EXPECT_FALSE((std::is_base_of_v<qmp::FileIO::FileException, qmp::R03::Raid03Exception>));
    EXPECT_FALSE((std::is_base_of_v<qmp::StringException, qmp::BufferTooSmallException>));
}

std::string thrown_text(std::uint32_t code) {
    try {
        qmp::throw_os_error(code, "some/path");
    } catch (const qmp::R03::Raid03Exception& exception) {
        EXPECT_EQ(exception.function(), "");
        EXPECT_EQ(exception.path(), "some/path");
        EXPECT_EQ(exception.error_code(), code);
        return exception.message();
    }
}

std::string reported_text(std::uint32_t code) {
    const std::string text = printed_by([&] { qmp::print_os_error(code); });
    const std::string head = "\nWindows Error Code: " + std::to_string(code) + "    ";
    EXPECT_EQ(text.substr(0, head.size()), head);
    EXPECT_EQ(text.substr(text.size() - 2), "\n\n");
    return text.substr(head.size(), text.size() - head.size() - 2);
}

TEST(OsErrors, TextsOfBothTables) {
    struct Row {
        std::uint32_t code;
        const char* text;
    };
    const Row rows[] = {
        {5, "Access Denied"},      {8, "Not Enough Memory"},
        {14, "Not Enough Memory"}, {23, "Cyclic Redundancy Check - Possible Hardware Failure"},
        {29, "Write Fault"},       {30, "Read Fault"},
        {39, "Disk is Full"},      {112, "Disk is Full"}};
    for (const Row& row : rows) {
        EXPECT_EQ(thrown_text(row.code), row.text) << row.code;
        EXPECT_EQ(reported_text(row.code), row.text) << row.code;
    }
}

TEST(OsErrors, MissingPathAndLostDeviceHaveATextOnlyWhenThrown) {
    EXPECT_EQ(thrown_text(2), "Path does not exist.");
    EXPECT_EQ(thrown_text(1167), "The device has been disconnected.");
    EXPECT_EQ(reported_text(2).rfind("Unknown Error, See:\n", 0), 0u);
    EXPECT_EQ(reported_text(1167).rfind("Unknown Error, See:\n", 0), 0u);
}

TEST(OsErrors, UnlistedCodesPointToTheDocumentation) {
    EXPECT_EQ(thrown_text(87).rfind("Unknown Error, See:\n", 0), 0u);
    EXPECT_GT(thrown_text(87).size(), std::string("Unknown Error, See:\n").size());
    EXPECT_EQ(reported_text(0).rfind("Unknown Error, See:\n", 0), 0u);
}

}  // namespace
