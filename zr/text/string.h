/// \file
/// zrString: the library's byte string.
///
/// A zrArray<char> whose length is the number of characters; no terminating zero is
/// counted, and none is guaranteed after the last character (GetCString adds one). It adds
/// no fields and overrides none of the array's virtual operations, so its flat form is
/// zrArray<char>'s: the length, then the bytes, no zero (zrMemSize, zrToMem and zrFromMem
/// reach it through zrPArray).
///
/// Who owns the characters:
///   - zrString(char*) and zrString(char*, int) view the caller's writable characters:
///     nothing is copied, nothing is counted, and the caller keeps them alive for as long
///     as the string (or anything cut from it) is used. Writes through the string
///     (operator[], an assignment of equal length, Fill) reach those characters;
///   - zrString(const char*) and zrString(const char*, int) copy the characters into a
///     private block: const text (a literal above all) may sit in read-only memory, and
///     the in-place writes above would fault on it. A string literal therefore always
///     gives an owning string, a char array or char* a view;
///   - Left, Right, Mid and Tokenize give views of this string's characters in the same
///     way: uncounted, so they must not outlive the block or the characters they came from;
///   - GetToken makes its token a window of this string (SetSubWindow): it holds this
///     string's block, counted, when there is one, and views the characters otherwise;
///   - the copy constructor, GetUnion, + and += give strings with a private block of
///     their own; zrString(int) owns a new block;
///   - assignment is zrArray<char>'s: a source of equal length is copied into the current
///     characters in place, even when they are viewed or shared.
/// Nothing of this allocates except zrString(int), the copy constructor, GetUnion, +, +=
/// and GetCString when it has to add the zero.
///
/// The scanner classifies bytes itself, exactly as the "C" locale does: letters A-Z and
/// a-z, digits 0-9, white space ' ', '\t', '\n', '\v', '\f', '\r'. A byte above 127
/// (negative as a signed char) is never a letter, a digit or a space, whatever the
/// platform's char signedness or the process's locale. (The C library's isalpha, isdigit
/// and isspace are undefined for negative values, which every such byte would be.)
#pragma once

#include <cstdint>
#include <utility>

#include "zr/arrays/array.h"
#include "zr/arrays/simple_array.h"
#include "zr/core/core.h"

/// The library's byte string: a zrArray<char> of the characters (no terminating zero
/// counted), with comparison, search, a tokenizer and a splitter.
/// Who owns the characters: a string made from const text (a literal) owns a private
/// copy; one made from a char* views the caller's characters uncounted; Left, Right, Mid
/// and Tokenize give uncounted views of this string's characters, which must not outlive
/// them; the copy constructor, +, += and GetUnion give strings of their own; assignment
/// of an equal length writes in place (see string.h). See the example
/// docs/examples.md#guide_text and examples/persistence.cpp.
class ZR_API zrString : public zrArray<char> {
  ZR_TYPE_IDENTITY
 public:
  /// What GetToken found.
  enum TOKEN : std::int32_t {
    TOKEN_IDENT = 0,   // a letter or '_', then letters, digits and '_'
    TOKEN_INT = 1,     // digits
    TOKEN_REAL = 2,    // digits with a fraction and/or an exponent
    TOKEN_STRING = 3,  // text between double quotes, both quotes included
    TOKEN_SYMBOL = 4,  // any other single character that is not white space
    TOKEN_END = 5,     // no further token
  };

  /// Empty: no block, no characters.
  zrString() = default;
  /// Views the characters of s up to its terminating zero, without copying or owning them
  /// (see the top of this file). A null or empty s gives an empty string.
  zrString(char* s);  // NOLINT(google-explicit-constructor): C strings convert
  /// Views the n characters at s, zeros included. A null s or n <= 0 gives an empty string.
  zrString(char* s, int n);
  /// Copies the characters of s up to its terminating zero into a private block. A null or
  /// empty s gives an empty string without a block.
  zrString(const char* s);  // NOLINT(google-explicit-constructor): literals convert
  /// Copies the n characters at s, zeros included, into a private block. A null s or
  /// n <= 0 gives an empty string without a block.
  zrString(const char* s, int n);
  /// Owns a new block of n characters, uninitialised; n == 0 gives an empty string and
  /// n < 0 throws "zrNewWithRef : n <= 0 ".
  explicit zrString(int n);
  /// A deep copy into a private block (empty for an empty source), as zrArray<char>.
  zrString(const zrString& other) : zrArray<char>(other) {}
  /// Takes the source's block, origin and length over; the source is left empty.
  zrString(zrString&& other) noexcept : zrArray<char>(std::move(other)) {}
  /// zrArray<char>'s assignment: equal lengths are copied in place (see above).
  zrString& operator=(const zrString& other) {
    zrArray<char>::operator=(other);
    return *this;
  }
  ~zrString() override;
  /// Exchanges the two strings' characters, blocks and lengths; no character is copied.
  /// Arrays of strings move their elements with it.
  void swap(zrString& other) { zrSimpleArray<char>::swap(other); }

  /// The characters; not necessarily followed by a zero.
  operator char*() const { return GetPointer(); }  // NOLINT(google-explicit-constructor)

  /// The characters with a zero right after the last one. When the string holds a block
  /// with room after the last character and that byte is already zero, nothing changes.
  /// Otherwise the string is resized to length + 1 (a private block, see ReSet), the new
  /// byte set to zero and the length cut back, so the zero lies just outside the string.
  /// An empty string gets a block of one zero byte.
  char* GetCString();
  /// The number of line feeds (byte 10): 0 for an empty string, and a last line without
  /// one is not counted.
  int GetNumberOfString() const;

  /// The position of the first c at or after k, else -1. k < 0 throws
  /// "zrString::Find:char: k < 0 ". Kept as the library always had it: for k beyond the
  /// length nothing is scanned and k itself comes back (only k == length gives -1).
  int Find(char c, int k = 0) const;
  /// The first position p >= k where all of s matches, else -1. k < 0 throws
  /// "zrString::Find:str: k < 0 ". An empty s matches at k when k <= length.
  int Find(const zrString& s, int k = 0) const;

  /// Equal lengths and equal bytes (1 or 0).
  int operator==(const zrString& other) const;
  int operator!=(const zrString& other) const;
  /// 1 when s holds exactly these characters followed by its zero: a zero in s before
  /// the length, or more characters in s, gives 0, so a string holding a zero byte never
  /// equals a C string. A null s is read as an empty one.
  int operator==(const char* s) const;
  int operator!=(const char* s) const;
  /// Lexicographic order: the first differing byte decides, compared as a signed 8-bit
  /// value (so bytes above 127 sort before the ASCII ones); a prefix is less.
  int operator<(const zrString& other) const;
  int operator>(const zrString& other) const;
  int operator<=(const zrString& other) const;
  int operator>=(const zrString& other) const;

  /// A new string owning this string's characters followed by b's (empty when both are).
  /// A total beyond INT_MAX characters is a block that cannot be made: zrErrNoMemory
  /// with its byte count (the total plus the 8-byte block header).
  zrString GetUnion(const zrString& b) const;
  zrString operator+(const zrString& b) const;
  /// This string becomes GetUnion(b): it takes the union's private block over, so sharers
  /// and the viewed characters of the old contents are left as they were.
  zrString& operator+=(const zrString& b);

  /// Views of this string's characters (uncounted; see the top of this file), with the
  /// texts of zrSimpleArray<T>: Left and Right need 1 <= n <= length, else
  /// "zrSimpleArray<T>::Left: Out of Range" (Right likewise); Mid needs start >= 0,
  /// n >= 1 and start + n <= length, else "zrSimpleArray<T>::Mid: Out of Range".
  zrString Left(int n) const;
  zrString Right(int n) const;
  zrString Mid(int start, int n) const;

  /// Splits the string at the characters of delimiters. Runs of delimiters are one
  /// separator and leading and trailing ones are ignored, so no token is empty. out is
  /// emptied when there is no token; otherwise it is resized to the count (with Init, only
  /// when the count differs, so its strings are reused) and out[i] is set to view the i-th
  /// token's characters of this string: nothing is copied and nothing is counted.
  ///
  /// Splitting into the array that holds the source gives the result of splitting a copy:
  /// when this string is an element of out, or its characters lie in a block held by one,
  /// resizing or re-pointing out could free them before they are read. The characters are
  /// then copied into a private block first, and the tokens view that block counted (they
  /// hold it between them, as windows do), so they stay valid after the call.
  void Tokenize(zrSimpleArray<zrString>& out, const zrString& delimiters) const;

  /// Scans the token that starts at or after pos (leading white space is skipped). token
  /// becomes a window of this string's characters (see the top of this file) and pos is
  /// left where the scan stopped, at the first character after the token; the kind comes
  /// back.
  ///   - pos >= length: token is emptied and TOKEN_END returned;
  ///   - only white space left: TOKEN_END with token unchanged and pos at the length;
  ///   - identifiers: a letter or '_', then letters, digits and '_';
  ///   - numbers: digits, then an optional '.' with at least one digit, then an optional
  ///     exponent of a lower-case 'e', an optional '-' and at least one digit. A part that
  ///     does not complete is left to the next call: "12." gives INT 12 with pos on the
  ///     point, "1e-" gives REAL 1 with pos on the e, and "12e" gives REAL 12 (a REAL
  ///     although it has no fraction, kept as the grammar always had it). 'E' never starts
  ///     an exponent, and a leading '-' or '+' is a symbol of its own;
  ///   - a string: from a '"' to the next one, both quotes in the token, no escapes;
  ///     reaching the end inside it throws "syntax error : expected '\"'";
  ///   - any other character (zero bytes and bytes above 127 included): a one-character
  ///     TOKEN_SYMBOL.
  /// pos < 0 throws "zrString::GetToken: pos < 0". The scanner never reads outside
  /// [pos, length). Its table once had two states that nothing entered; they are gone, and
  /// a state it does not know throws "zrString::GetToken: inner error".
  TOKEN GetToken(int& pos, zrString& token) const;

 private:
  // -1, 0 or 1 by the order of operator<.
  int Compare(const zrString& other) const;
};

/// Arrays of strings: the result of Tokenize. The array moves its elements around
/// (Insert, Remove, Replace, InverseOrder, the cycle shifts) by exchanging them with
/// zrString::swap, so an array of views never writes one token's characters over
/// another's.
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<zrString>);
