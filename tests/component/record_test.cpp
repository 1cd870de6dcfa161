// The component's record and the operations that don't resample.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "acli.h"
#include "component/host_block.h"

namespace testing_support {
namespace {

const uint8_t *RecordBytes() { return reinterpret_cast<const uint8_t *>(&ACLI); }

template <typename T>
T RecordField(size_t offset) {
  return reference::Load<T>(RecordBytes() + offset);
}

TEST(Record, BeginsWithItsTagVersionAndNames) {
  EXPECT_EQ(std::memcmp(RecordBytes(), "TLCA", 4), 0);
  EXPECT_EQ(RecordField<uint32_t>(0), 0x41434C54u);
  EXPECT_EQ(RecordField<uint32_t>(4), 0x00000100u);
  EXPECT_STREQ(RecordField<const char *>(8), "AudioResampler");
  EXPECT_STREQ(RecordField<const char *>(16), "NXR");
}

TEST(Record, HasTenSlotsOf8BytesAndEndsInZeros) {
  static_assert(sizeof ACLI == 120);
  static_assert(offsetof(acli_component, get_identity) == 24);
  static_assert(offsetof(acli_component, release_identity) == 32);
  static_assert(offsetof(acli_component, query_property) == 40);
  static_assert(offsetof(acli_component, unsupported_a) == 48);
  static_assert(offsetof(acli_component, create) == 56);
  static_assert(offsetof(acli_component, unsupported_b) == 64);
  static_assert(offsetof(acli_component, process) == 72);
  static_assert(offsetof(acli_component, check_instance) == 80);
  static_assert(offsetof(acli_component, unsupported_c) == 88);
  static_assert(offsetof(acli_component, destroy) == 96);
  static_assert(offsetof(acli_component, reserved) == 104);
  for (size_t slot = 0; slot < 10; ++slot) {
    EXPECT_NE(RecordField<void *>(24 + 8 * slot), nullptr) << "slot " << slot;
  }
  EXPECT_EQ(RecordField<uint64_t>(104), 0u);
  EXPECT_EQ(RecordField<uint64_t>(112), 0u);
}

TEST(Record, BuffersHaveTheirFieldsWhereHostsPutThem) {
  static_assert(sizeof(acli_buffer) == 88);
  static_assert(offsetof(acli_buffer, size) == 4);
  static_assert(offsetof(acli_buffer, data) == 8);
  static_assert(offsetof(acli_buffer, params) == 32);
  static_assert(offsetof(acli_buffer, audio_format) == 40);
  static_assert(offsetof(acli_buffer, rate) == 44);
  static_assert(offsetof(acli_buffer, channels) == 48);
  static_assert(offsetof(acli_buffer, bits_per_sample) == 84);
  EXPECT_EQ(ACLI_OK, 0);
  EXPECT_EQ(ACLI_ERR_INVALID, -1);
  EXPECT_EQ(ACLI_ERR_UNSUPPORTED, -2);
}

// Drives a whole conversion through addresses taken from the record's bytes alone.
TEST(Record, EachSlotIsReachedByItsPlaceAlone) {
  const auto get_identity = RecordField<char *(*)(int, char **)>(24);
  const auto release_identity = RecordField<int32_t (*)(void *)>(32);
  const auto query_property = RecordField<int32_t (*)(void *, unsigned, void *, void *, unsigned *,
                                                      void *, unsigned *, unsigned *)>(40);
  const auto create = RecordField<int32_t (*)(void *, const void *, void **)>(56);
  const auto process = RecordField<int32_t (*)(void *, const void *, void *)>(72);
  const auto check_instance = RecordField<int32_t (*)(void *)>(80);
  const auto destroy = RecordField<int32_t (*)(void *)>(96);

  char *name = nullptr;
  EXPECT_STREQ(get_identity(1, &name), "Resampler");
  EXPECT_EQ(release_identity(name), 0);

  void *handle = nullptr;
  ASSERT_EQ(create(nullptr, nullptr, &handle), 0);
  unsigned selector = 0, a = 0, b = 1;
  EXPECT_EQ(query_property(handle, 3, nullptr, nullptr, &selector, nullptr, &a, &b), 0);
  for (size_t refused : {48, 64, 88})
    EXPECT_EQ(RecordField<int32_t (*)(void *)>(refused)(handle), -2);
  EXPECT_EQ(check_instance(handle), 0);
  HostBlock block(kFloat, ACLI_DIR_UP, 2, 1);
  EXPECT_EQ(process(handle, &block.in_record, &block.out_record), 0);
  EXPECT_EQ(destroy(handle), 0);
}

// ---- Identity ----

TEST(Identity, OneGivesAFreshCopyOfTheShortName) {
  char *first = nullptr;
  char *second = nullptr;
  EXPECT_EQ(ACLI.get_identity(1, &first), first);
  EXPECT_EQ(ACLI.get_identity(1, &second), second);
  EXPECT_STREQ(first, "Resampler");
  EXPECT_STREQ(second, "Resampler");
  EXPECT_NE(first, second);
  EXPECT_NE(first, session_identity);
  first[0] = 'X';
  EXPECT_STREQ(second, "Resampler");
  EXPECT_STREQ(session_identity, "Resampler");
  EXPECT_EQ(ACLI.release_identity(first), ACLI_OK);
  EXPECT_EQ(ACLI.release_identity(second), ACLI_OK);
}

TEST(Identity, AnythingElseGivesNull) {
  for (int what : {0, 2, -1, INT32_MIN, INT32_MAX}) {
    char untouched = 0;
    char *name = &untouched;
    EXPECT_EQ(ACLI.get_identity(what, &name), nullptr) << what;
    EXPECT_EQ(name, nullptr) << what;
  }
}

TEST(Identity, ReleasingNothingSucceeds) { EXPECT_EQ(ACLI.release_identity(nullptr), ACLI_OK); }

TEST(Identity, TheShortNameIsWritableAndCopiedAsItStands) {
  static_assert(sizeof session_identity == 10);
  EXPECT_EQ(std::memcmp(session_identity, "Resampler", 10), 0);
  for (const char *changed : {"Changed", "", "123456789"}) {
    std::strcpy(session_identity, changed);
    char *name = nullptr;
    EXPECT_STREQ(ACLI.get_identity(1, &name), changed);
    ACLI.release_identity(name);
  }
  std::strcpy(session_identity, "Resampler");
}

// ---- Properties and refusals ----

struct Property {
  bool handle;
  unsigned id;
  unsigned *selector;
  int32_t status;
};

TEST(Property, ChecksItsArgumentsInOrder) {
  Instance instance(ACLI_DIR_UP);
  static unsigned zero = 0, one = 1, top_bit = 0x80000000u;
  const Property cases[] = {
      {false, 3, &zero, ACLI_ERR_INVALID},       {false, 2, nullptr, ACLI_ERR_INVALID},
      {true, 2, &zero, ACLI_ERR_UNSUPPORTED},    {true, 2, nullptr, ACLI_ERR_UNSUPPORTED},
      {true, 0, &one, ACLI_ERR_UNSUPPORTED},     {true, 0x80000003u, &zero, ACLI_ERR_UNSUPPORTED},
      {true, 3, nullptr, ACLI_ERR_INVALID},      {true, 3, &one, ACLI_ERR_UNSUPPORTED},
      {true, 3, &top_bit, ACLI_ERR_UNSUPPORTED}, {true, 3, &zero, ACLI_OK},
  };
  for (const auto &[handle, id, selector, status] : cases) {
    SCOPED_TRACE(std::to_string(id) + (handle ? " with a handle" : " without a handle"));
    unsigned a = 77, b = 78;
    EXPECT_EQ(ACLI.query_property(handle ? instance.handle() : nullptr, id, nullptr, nullptr,
                                  selector, nullptr, &a, &b),
              status);
    EXPECT_EQ(a, status == ACLI_OK ? 4u : 77u);
    EXPECT_EQ(b, status == ACLI_OK ? 0u : 78u);
  }
}

TEST(Property, IgnoresWhatItIsNotAskedFor) {
  Instance instance(ACLI_DIR_UP);
  unsigned selector = 0, a = 77, b = 78;
  int other = 0;
  EXPECT_EQ(ACLI.query_property(instance.handle(), 3, &other, &other, &selector, &other, &a, &b),
            ACLI_OK);
  EXPECT_EQ(a, 4u);
  EXPECT_EQ(b, 0u);
  EXPECT_EQ(ACLI.query_property(instance.handle(), 2, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr),
            ACLI_ERR_UNSUPPORTED);
}

TEST(Property, NullResultsAreRefused) {
  Instance instance(ACLI_DIR_UP);
  unsigned selector = 0, result = 77;
  EXPECT_EQ(ACLI.query_property(instance.handle(), 3, nullptr, nullptr, &selector, nullptr, nullptr,
                                &result),
            ACLI_ERR_INVALID);
  EXPECT_EQ(ACLI.query_property(instance.handle(), 3, nullptr, nullptr, &selector, nullptr, &result,
                                nullptr),
            ACLI_ERR_INVALID);
  EXPECT_EQ(result, 77u);
}

TEST(Refusals, NeedAHandleAndServeNothing) {
  Instance instance(ACLI_DIR_UP);
  for (auto refused : {ACLI.unsupported_a, ACLI.unsupported_b, ACLI.unsupported_c}) {
    EXPECT_EQ(refused(nullptr), ACLI_ERR_INVALID);
    EXPECT_EQ(refused(instance.handle()), ACLI_ERR_UNSUPPORTED);
  }
}

// ---- Instances ----

TEST(Create, TakesTheDirectionFromTheConfiguration) {
  for (uint32_t direction : {0u, 1u, 2u, 0xFFFFFFFFu}) {
    const Instance instance(direction);
    EXPECT_EQ(instance.Get<uint32_t>(Instance::kDirection), direction);
    std::vector<uint8_t> wanted(Instance::kSize);
    std::memcpy(&wanted[Instance::kDirection], &direction, 4);
    EXPECT_EQ(instance.Contents(), wanted);
  }
}

TEST(Create, GoesUpWithoutAConfiguration) {
  acli_instance *handle = nullptr;
  int host = 0;
  ASSERT_EQ(ACLI.create(&host, nullptr, &handle), ACLI_OK);
  ASSERT_NE(handle, nullptr);
  HostBlock block(kFloat, ACLI_DIR_UP, 4, 1);
  EXPECT_EQ(ACLI.process(handle, &block.in_record, &block.out_record), ACLI_OK);
  EXPECT_EQ(block.out_record.size, 256u * 4);
  EXPECT_EQ(ACLI.destroy(handle), ACLI_OK);
}

TEST(Create, NeedsAPlaceForTheHandle) {
  EXPECT_EQ(ACLI.create(nullptr, nullptr, nullptr), ACLI_ERR_INVALID);
}

TEST(CheckInstance, TellsAHandleFromNull) {
  Instance instance(ACLI_DIR_DOWN);
  EXPECT_EQ(ACLI.check_instance(instance.handle()), ACLI_OK);
  EXPECT_EQ(ACLI.check_instance(nullptr), ACLI_ERR_INVALID);
}

TEST(Destroy, EndsAnInstanceWithAndWithoutAnEngine) {
  EXPECT_EQ(ACLI.destroy(nullptr), ACLI_ERR_INVALID);
  for (bool with_engine : {false, true}) {
    EXPECT_EQ(ACLI.destroy(NewInstance(with_engine)), ACLI_OK);
  }
}

}  // namespace
}  // namespace testing_support
