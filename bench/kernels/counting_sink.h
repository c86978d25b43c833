// A styled-text sink that only counts the runs it is given, so that reading RTF is measured alone.
#pragma once

#include <cstdint>

#include "styledtext/rtf_reader.h"

namespace zeltest {

class CountingSink : public zel::styledtext::StyledTextSink {
 public:
  void clear() override { runs_ = 0; }
  std::int64_t paragraphCount() override { return runs_; }
  void appendStyleRun(const zel::styledtext::RunStyle&, const zel::styledtext::RunText&) override {
    ++runs_;
  }
  void setParagraphAlignment(std::int64_t, std::int64_t) override {}

 private:
  std::int64_t runs_ = 0;
};

}  // namespace zeltest
