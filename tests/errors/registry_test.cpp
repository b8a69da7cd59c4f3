#include "errors/registry.h"

#include <gtest/gtest.h>

#include "errors/bsr_modular_check.h"
#include "errors/convolution_exceptions.h"
#include "errors/far_memory_out_of_bounds.h"
#include "errors/file_exception.h"
#include "errors/std_exception.h"
#include "errors/system_exception.h"
#include "support/fatal.h"

namespace {

using namespace std::string_literals;

const std::string one = "\x01\0\0\0\0\0\0\0"s;
const std::string two = "\x02\0\0\0\0\0\0\0"s;
const std::string nasty = "\xef\xcd\xab\x89\x67\x45\x23\x01"s;  // 0x0123456789abcdef
constexpr std::uint64_t nasty_value = 0x0123456789abcdef;

TEST(ExceptionRecord, EveryLayoutIsExact) {
    EXPECT_EQ(qmp::StringException("f()", "m").serialize(), "StringException\0f()\0m\0"s);
    EXPECT_EQ(qmp::StdException("t"s).serialize(), "StdException\0t\0"s);
    EXPECT_EQ(qmp::SystemException("f", "m", 0x04030201).serialize(),
              "SystemException\0f\0m\0\x01\x02\x03\x04"s);
    EXPECT_EQ(qmp::BufferTooSmallException("f", 1, nasty_value).serialize(),
              "BufferTooSmallException\0f\0"s + one + nasty);
    EXPECT_EQ(qmp::LimitExceededException("f", 1, nasty_value).serialize(),
              "LimitExceededException\0f\0"s + one + nasty);
    EXPECT_EQ(qmp::ConvolutionTooSmallException("f", 1, 2).serialize(),
              "ConvolutionTooSmallException\0f\0"s + one + two);
    EXPECT_EQ(qmp::ConvolutionFailedException("f", "m", 1, nasty_value).serialize(),
              "ConvolutionFailedException\0f\0m\0"s + one + nasty);
    EXPECT_EQ(qmp::FarMemoryOutOfBoundsException("f", 1, 2, nasty_value).serialize(),
              "FarMemoryOutOfBoundsException\0f\0"s + one + two + nasty);
    EXPECT_EQ(kelvara::BSRModularCheckFailedException("f", "m", 1, 2, {nasty_value, 1}).serialize(),
              "BSRModularCheckFailedException\0f\0m\0"s + one + two + two + nasty + one);
    EXPECT_EQ(qmp::FileIO::FileException("f", "m", "p", 112).serialize(), "FileException\0f\0m\0p\0p\0\0\0"s);
    EXPECT_EQ(qmp::R03::Raid03Exception("f", "m", "p", 2).serialize(),
              "Raid03Exception\0f\0m\0p\0\x02\0\0\0"s);
    EXPECT_EQ(qmp::DiskRaid0::Raid0Exception("f", "m", "p", 2).serialize(),
              "Raid0Exception\0f\0m\0p\0\x02\0\0\0"s);
}

TEST(ExceptionRecord, ClassesWithoutFieldsWriteTheRecordOfTheirBase) {
    const std::string text = "StringException\0f\0m\0"s;
    EXPECT_EQ(qmp::InvalidParametersException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::InvalidTransformException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::TransformTooSmallException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::AlgorithmFailedException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::ArithmeticException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::ParseException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::FarMemoryException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::UnsupportedValueException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::UnsupportedZeroException("f", "m").serialize(), text);
    EXPECT_EQ(qmp::UnsupportedNegativeException("f", "m").serialize(), text);
    EXPECT_EQ(Ordalis::InconsistentMetaData("f", "m", "p", 1).serialize(),
              "FileException\0f\0m\0p\0\x01\0\0\0"s);
}

TEST(ExceptionRegistry, HoldsEveryConcreteClass) {
    EXPECT_EQ(qmp::registered_exception_names(), (std::vector<std::string>{"AlgorithmFailedException",
                                                                           "ArithmeticException",
                                                                           "BSRModularCheckFailedException",
                                                                           "BufferTooSmallException",
                                                                           "ConvolutionFailedException",
                                                                           "ConvolutionTooSmallException",
                                                                           "FarMemoryException",
                                                                           "FarMemoryOutOfBoundsException",
                                                                           "FileException",
                                                                           "InconsistentMetaData",
                                                                           "InvalidParametersException",
                                                                           "InvalidTransformException",
                                                                           "LimitExceededException",
                                                                           "ParseException",
                                                                           "Raid03Exception",
                                                                           "Raid0Exception",
                                                                           "StdException",
                                                                           "StringException",
                                                                           "SystemException",
                                                                           "TransformTooSmallException",
                                                                           "UnsupportedNegativeException",
                                                                           "UnsupportedValueException",
                                                                           "UnsupportedZeroException"}));
    EXPECT_EQ(qmp::registered_exception_names().size(), 23u);
}

TEST(ExceptionRegistry, RebuildsWhatWasSerialised) {
    const std::unique_ptr<qmp::Exception> originals[] = {
        qmp::StringException("f", "m").clone(),
        qmp::StdException("t"s).clone(),
        qmp::SystemException("f", "m", 0xfedcba98).clone(),
        qmp::BufferTooSmallException("f", 3, nasty_value).clone(),
        qmp::LimitExceededException("f", 0, nasty_value).clone(),
        qmp::ConvolutionTooSmallException("f", 3, nasty_value).clone(),
        qmp::ConvolutionFailedException("f", "m", 3, nasty_value).clone(),
        qmp::FarMemoryOutOfBoundsException("f", 3, 4, nasty_value).clone(),
        kelvara::BSRModularCheckFailedException("f", "m", 3, 4, {}).clone(),
        kelvara::BSRModularCheckFailedException("f", "m", 3, 4, {1, nasty_value, 2}).clone(),
        qmp::FileIO::FileException("f", "m", "p", 112).clone(),
        qmp::R03::Raid03Exception("f", "m", "p", 112).clone(),
        qmp::DiskRaid0::Raid0Exception("f", "m", "p", 112).clone(),
    };
    for (const auto& original : originals) {
        const auto rebuilt = qmp::rebuild_exception(original->serialize());
        EXPECT_STREQ(rebuilt->get_name(), original->get_name());
        EXPECT_EQ(rebuilt->serialize(), original->serialize());
    }
}

TEST(ExceptionRegistry, ARebuiltRecordIsOfTheClassItNames) {
    EXPECT_STREQ(qmp::rebuild_exception(qmp::ParseException("f", "m").serialize())->get_name(),
                 "StringException");
    EXPECT_STREQ(
        qmp::rebuild_exception(Ordalis::InconsistentMetaData("f", "m", "p", 1).serialize())->get_name(),
        "FileException");
}

TEST(ExceptionRegistry, EveryNameRebuildsItsOwnClass) {
    EXPECT_STREQ(qmp::rebuild_exception("ParseException\0f\0m\0"s)->get_name(), "ParseException");
    EXPECT_STREQ(qmp::rebuild_exception("InconsistentMetaData\0f\0m\0p\0\x01\0\0\0"s)->get_name(),
                 "InconsistentMetaData");
}

TEST(ExceptionRegistry, RefusesUnknownAndDamagedRecords) {
    EXPECT_THROW(qmp::rebuild_exception("NoSuchException\0f\0"s), qmp::InvalidParametersException);
    const std::string whole =
        kelvara::BSRModularCheckFailedException("f", "m", 1, 2, {nasty_value, 1}).serialize();
    for (std::size_t n = 0; n < whole.size(); ++n) {
        EXPECT_THROW(qmp::rebuild_exception(whole.substr(0, n)), qmp::ParseException) << n;
    }
    EXPECT_THROW(qmp::rebuild_exception(whole + "x"), qmp::ParseException);
    std::string endless = kelvara::BSRModularCheckFailedException("f", "m", 1, 2, {}).serialize();
    endless.replace(endless.size() - 8, 8, std::string(8, '\xff'));
    EXPECT_THROW(qmp::rebuild_exception(endless), qmp::ParseException);
}

#if GTEST_HAS_DEATH_TEST
TEST(ExceptionRegistryDeathTest, ANameRegisteredTwiceEndsTheProgram) {
    EXPECT_FATAL(qmp::register_exception_type("StringException", nullptr), "Duplicate Exception Type");
}
#endif

}  // namespace
