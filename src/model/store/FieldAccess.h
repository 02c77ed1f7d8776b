#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "model/store/StoreTypes.h"

namespace tb {

class EntityDescription;
class ManagedObject;

// How an attribute's value is held in its record's C++ field. The store reads, writes,
// hashes and copies fields by this kind, with no per-attribute code.
enum class FieldKind : std::uint8_t {
    optionalString,  // std::optional<std::string>
    string,          // std::string
    boolean,         // bool
    optionalBoolean,
    integer,  // std::int64_t
    optionalInteger,
    real,  // double (also Date)
    optionalReal,
    optionalData,          // std::optional<Data>
    optionalIntegerArray,  // std::optional<std::vector<std::int64_t>>
    recordArray,           // std::vector<std::shared_ptr<E>>, E a stored entity record
};

// Finds one attribute's field inside a record of its entity.
class FieldLocator {
  public:
    virtual ~FieldLocator() = default;
    virtual void* locate(const ManagedObject& record) const = 0;
};

// The elements of a record array field, whatever their record type.
class RecordListAccess {
  public:
    virtual ~RecordListAccess() = default;
    virtual const EntityDescription& elementEntity() const = 0;
    virtual std::size_t size(const void* field) const = 0;
    // May be null: a list can hold empty pointers.
    virtual const ManagedObject* at(const void* field, std::size_t index) const = 0;
    virtual void clear(void* field) const = 0;
    // `record` must be an element record made by elementEntity().
    virtual void append(void* field, std::shared_ptr<ManagedObject> record) const = 0;
    virtual void assign(void* to, const void* from) const = 0;
};

template <class M>
struct FieldTraits;  // only the field types the store can keep have a kind

template <>
struct FieldTraits<std::optional<std::string>> {
    static constexpr FieldKind kind = FieldKind::optionalString;
};
template <>
struct FieldTraits<std::string> {
    static constexpr FieldKind kind = FieldKind::string;
};
template <>
struct FieldTraits<bool> {
    static constexpr FieldKind kind = FieldKind::boolean;
};
template <>
struct FieldTraits<std::optional<bool>> {
    static constexpr FieldKind kind = FieldKind::optionalBoolean;
};
template <>
struct FieldTraits<std::int64_t> {
    static constexpr FieldKind kind = FieldKind::integer;
};
template <>
struct FieldTraits<std::optional<std::int64_t>> {
    static constexpr FieldKind kind = FieldKind::optionalInteger;
};
template <>
struct FieldTraits<double> {
    static constexpr FieldKind kind = FieldKind::real;
};
template <>
struct FieldTraits<std::optional<double>> {
    static constexpr FieldKind kind = FieldKind::optionalReal;
};
template <>
struct FieldTraits<std::optional<Data>> {
    static constexpr FieldKind kind = FieldKind::optionalData;
};
template <>
struct FieldTraits<std::optional<std::vector<std::int64_t>>> {
    static constexpr FieldKind kind = FieldKind::optionalIntegerArray;
};
template <class E>
struct FieldTraits<std::vector<std::shared_ptr<E>>> {
    static constexpr FieldKind kind = FieldKind::recordArray;
};

// The field `member` (declared in C, a base of the record type T) of a T record.
template <class T, class C, class M>
class MemberLocator final : public FieldLocator {
  public:
    explicit MemberLocator(M C::*member) : member_(member) {}
    void* locate(const ManagedObject& record) const override {
        auto& object = const_cast<T&>(static_cast<const T&>(record));
        return &(static_cast<C&>(object).*member_);
    }

  private:
    M C::*member_;
};

template <class E>
class RecordListOf final : public RecordListAccess {
    using List = std::vector<std::shared_ptr<E>>;

  public:
    const EntityDescription& elementEntity() const override { return E::entityDescription(); }
    std::size_t size(const void* field) const override {
        return static_cast<const List*>(field)->size();
    }
    const ManagedObject* at(const void* field, std::size_t index) const override {
        return (*static_cast<const List*>(field))[index].get();
    }
    void clear(void* field) const override { static_cast<List*>(field)->clear(); }
    void append(void* field, std::shared_ptr<ManagedObject> record) const override {
        static_cast<List*>(field)->push_back(std::static_pointer_cast<E>(std::move(record)));
    }
    void assign(void* to, const void* from) const override {
        *static_cast<List*>(to) = *static_cast<const List*>(from);
    }
};

template <class M>
struct RecordListFor {
    static std::unique_ptr<RecordListAccess> make() { return nullptr; }
};
template <class E>
struct RecordListFor<std::vector<std::shared_ptr<E>>> {
    static std::unique_ptr<RecordListAccess> make() { return std::make_unique<RecordListOf<E>>(); }
};

}  // namespace tb
