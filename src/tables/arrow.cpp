#include "tables/arrow.h"

#include <cstring>
#include <memory>
#include <utility>

namespace quorvex {
namespace {

struct OwnedSchema {
  std::vector<ArrowSchema> children;
  std::vector<ArrowSchema*> pointers;
  std::vector<std::string> names, metadata;
};

struct OwnedArray {
  Batch batch;
  std::vector<ArrowArray> children;
  std::vector<ArrowArray*> pointers;
  std::vector<const void*> buffers;  // three a column
  const void* no_bitmap = nullptr;
};

// A consumer may take a child out of its parent and keep it longer, so everybody holds on to what
// all of them point to.
template <typename Owned, typename T>
void Release(T* self) {
  for (int64_t i = 0; i < self->n_children; ++i) {
    if (self->children[i]->release != nullptr) self->children[i]->release(self->children[i]);
  }
  delete static_cast<std::shared_ptr<Owned>*>(self->private_data);
  self->release = nullptr;
}

template <typename Owned, typename T>
void GiveTo(T* self, const std::shared_ptr<Owned>& owned) {
  self->private_data = new std::shared_ptr<Owned>(owned);
  self->release = Release<Owned, T>;
}

// A number of pairs, then each key and value with its length in front.
std::string Metadata(const Column& column) {
  const std::pair<const char*, const std::string*> all[] = {
      {"path", &column.path}, {"unit", &column.unit}, {"meaning", &column.meaning}};
  int32_t count = 0;
  std::string text(sizeof count, '\0');
  const auto put = [&text](const std::string& piece) {
    const auto size = static_cast<int32_t>(piece.size());
    text.append(reinterpret_cast<const char*>(&size), sizeof size);
    text += piece;
  };
  for (const auto& [key, value] : all) {
    if (value->empty()) continue;
    put(key);
    put(*value);
    ++count;
  }
  std::memcpy(text.data(), &count, sizeof count);
  return text;
}

}  // namespace

const char* ArrowFormat(ValueType type, bool utc) {
  switch (type) {
    case ValueType::kInt32:
      return "i";
    case ValueType::kInt64:
      return "l";
    case ValueType::kFloat:
      return "f";
    case ValueType::kDouble:
      return "g";
    case ValueType::kText:
      return "u";
    case ValueType::kTime:
      break;
  }
  return utc ? "tsu:UTC" : "tsu:";
}

void ExportSchema(const std::vector<const Column*>& columns, bool utc, ArrowSchema* to) {
  auto owned = std::make_shared<OwnedSchema>();
  owned->children.resize(columns.size());
  for (const Column* column : columns) {
    owned->names.push_back(column->name);
    owned->metadata.push_back(Metadata(*column));
  }
  for (size_t i = 0; i < columns.size(); ++i) {
    ArrowSchema& child = owned->children[i];
    child.format = ArrowFormat(columns[i]->type, utc);
    child.name = owned->names[i].c_str();
    child.metadata = owned->metadata[i].data();
    child.flags = ARROW_FLAG_NULLABLE;
    GiveTo(&child, owned);
    owned->pointers.push_back(&child);
  }
  *to = {};
  to->format = "+s";
  to->name = "";
  to->n_children = static_cast<int64_t>(columns.size());
  to->children = owned->pointers.data();
  GiveTo(to, owned);
}

void ExportBatch(Batch batch, ArrowArray* to) {
  auto owned = std::make_shared<OwnedArray>();
  owned->batch = std::move(batch);
  const std::vector<ColumnData>& columns = owned->batch.columns;
  owned->children.resize(columns.size());
  owned->buffers.resize(columns.size() * 3);
  for (size_t i = 0; i < columns.size(); ++i) {
    const void** buffers = &owned->buffers[i * 3];
    buffers[0] = columns[i].valid;
    buffers[1] = columns[i].values;
    buffers[2] = columns[i].text;
    ArrowArray& child = owned->children[i];
    child.length = owned->batch.rows;
    child.null_count = columns[i].nulls;
    child.n_buffers = columns[i].column->type == ValueType::kText ? 3 : 2;
    child.buffers = buffers;
    GiveTo(&child, owned);
    owned->pointers.push_back(&child);
  }
  *to = {};
  to->length = owned->batch.rows;
  to->n_buffers = 1;
  to->buffers = &owned->no_bitmap;
  to->n_children = static_cast<int64_t>(columns.size());
  to->children = owned->pointers.data();
  GiveTo(to, owned);
}

}  // namespace quorvex
