#include "columns.h"

#include <algorithm>

namespace mvk {

Columns::Columns(std::size_t rows, std::size_t most) : rows_(rows), most_(most + most % 2) {}

void Columns::add(std::span<const float> column) {
  if (added_ == most_ * group_) merge_pairs();
  if (added_ % group_ == 0) {
    values_.insert(values_.end(), column.begin(), column.end());
  } else {
    float *last = values_.data() + values_.size() - rows_;
    for (std::size_t i = 0; i < rows_; ++i) last[i] = std::max(last[i], column[i]);
  }
  ++added_;
}

void Columns::merge_pairs() {
  for (std::size_t column = 0; column < most_ / 2; ++column) {
    const float *pair = &values_[2 * column * rows_];
    float *merged = &values_[column * rows_];
    for (std::size_t i = 0; i < rows_; ++i) merged[i] = std::max(pair[i], pair[rows_ + i]);
  }
  values_.resize(most_ / 2 * rows_);
  group_ *= 2;
}

}  // namespace mvk
