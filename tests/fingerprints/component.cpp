// The component's record with its operations, and what goes with it.
#include "acli.h"
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"

namespace testing_support {
namespace {

void AddRecord(Digest &digest) {
  digest.Integer(ACLI.tag);
  digest.Integer(ACLI.version);
  digest.Text(ACLI.name);
  digest.Text(ACLI.implementor);
  digest.Bytes(ACLI.reserved, sizeof ACLI.reserved);
}

// The copy that a host gets is somewhere else each time; its text counts.
void AddIdentity(Digest &digest) {
  for (int what : {0, 1, 2}) {
    char *stored = nullptr;
    char *const returned = ACLI.get_identity(what, &stored);
    digest.Integer(returned == stored);
    digest.Integer(returned != nullptr);
    if (returned != nullptr) digest.Text(returned);
    digest.Integer(static_cast<uint64_t>(ACLI.release_identity(returned)));
  }
}

void AddRefusals(Digest &digest, acli_instance *handle) {
  const auto add = [&](int32_t status) { digest.Integer(static_cast<uint64_t>(status)); };
  for (acli_instance *each : {handle, static_cast<acli_instance *>(nullptr)}) {
    add(ACLI.unsupported_a(each));
    add(ACLI.unsupported_b(each));
    add(ACLI.unsupported_c(each));
    add(ACLI.check_instance(each));
    for (unsigned id : {2u, 3u}) {
      for (unsigned selector : {0u, 1u}) {
        unsigned a = 77, b = 88, asked = selector;
        add(ACLI.query_property(each, id, nullptr, nullptr, &asked, nullptr, &a, &b));
        add(ACLI.query_property(each, id, nullptr, nullptr, nullptr, nullptr, &a, &b));
        add(ACLI.query_property(each, id, nullptr, nullptr, &asked, nullptr, nullptr, &b));
        digest.Integer(a);
        digest.Integer(b);
      }
    }
  }
  add(ACLI.create(nullptr, nullptr, nullptr));
  add(ACLI.process(handle, nullptr, nullptr));
  add(ACLI.destroy(nullptr));
}

struct Format {
  uint32_t code, bits;
};
constexpr Format kFormats[] = {
    {ACLI_FORMAT_PCM16, 16}, {ACLI_FORMAT_PCM32, 32}, {ACLI_FORMAT_FLOAT, 32}};

// Blocks of a host that changes its mind on the factor and the channels. 16-bit audio has one
// channel, and integers are what floats are in memory.
void AddProcess(Digest &digest, acli_instance *handle, uint32_t direction, const Format &format) {
  for (uint32_t factor : {1u, 2u, 4u, 2u, 0u}) {
    for (uint32_t channels : {1u, 2u, 36u}) {
      if (format.bits == 16 && channels != 1) continue;
      Corpus corpus(kUniform, factor);
      for (int block = 0; block < 3; ++block) {
        const uint32_t frames = direction == ACLI_DIR_UP && factor > 0 ? 256 / factor : 256;
        std::vector<float> data = corpus.Copy(size_t{256} * channels);
        std::vector<uint8_t> result(size_t{1024} * channels, 0x5a);
        acli_buffer in = {}, out = {};
        in.size = frames * channels * format.bits / 8;
        in.data = data.data();
        in.params = &factor;
        in.audio_format = format.code;
        in.rate = 48000;
        in.channels = channels;
        in.bits_per_sample = format.bits;
        out.size = static_cast<uint32_t>(result.size());
        out.data = result.data();
        digest.Integer(static_cast<uint64_t>(ACLI.process(handle, &in, &out)));
        digest.Integer(out.size);
        digest.Integer(out.rate);
        if (out.size <= result.size()) digest.Bytes(result.data(), out.size);
      }
    }
  }
}

void AddComponent(Digest &digest) {
  AddRecord(digest);
  AddIdentity(digest);
  for (uint32_t direction : {ACLI_DIR_UP, ACLI_DIR_DOWN}) {
    for (const Format &format : kFormats) {
      acli_buffer config = {};
      config.params = &direction;
      acli_instance *handle = nullptr;
      digest.Integer(static_cast<uint64_t>(ACLI.create(nullptr, &config, &handle)));
      AddRefusals(digest, handle);
      AddProcess(digest, handle, direction, format);
      digest.Integer(static_cast<uint64_t>(ACLI.destroy(handle)));
    }
  }
}

void AddChannelPointers(Digest &digest) {
  uint8_t buffer[4096];
  for (int32_t datatype = DT_BYTE_A; datatype <= DT_FLOAT64; ++datatype) {
    for (uint32_t channels : {1u, 2u, 5u}) {
      for (uint64_t stride : {1u, 2u, 5u, 8u}) {
        for (uint64_t bytes : {0u, 10u, 1000u, 1001u}) {
          void *pointers[5] = {buffer, buffer, buffer, buffer, buffer};
          orvane_stream_desc desc = {channels, stride, datatype, pointers};
          digest.Integer(static_cast<uint64_t>(acli_set_channel_ptrs(buffer, &desc, bytes)));
          for (void *p : pointers) {
            digest.Integer(static_cast<uint64_t>(static_cast<uint8_t *>(p) - buffer));
          }
        }
      }
    }
  }
}

}  // namespace

void ListComponent(Entries &entries) {
  MVK_ENTRY(ACLI, AddComponent);
  MVK_ENTRY(session_identity,
            [](Digest &digest) { digest.Bytes(session_identity, sizeof session_identity); });
  MVK_ENTRY(acli_set_channel_ptrs, AddChannelPointers);
}

}  // namespace testing_support
