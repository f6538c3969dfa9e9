#pragma once

#include "zelto/Export.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

class CDrawShape;

/// The training samples of a supervised classification: per class a name, per-band numbers, a
/// band-by-band matrix and the shapes from which the samples were drawn.
///
/// The file, little-endian without padding: a header of 312 bytes (the tag
/// "ZELTO_SampleFileTag" in UTF-16 ending in NUL, the number of classes at 288 as int32, the
/// other bytes carried as they are), then per class
/// 1. the name field, 256 bytes;
/// 2. four int32, the fourth being the number of bands n;
/// 3. for each band three doubles: of the second, the first and the third array, in this order;
/// 4. two int32;
/// 5. the n × n matrix as doubles, row by row;
/// 6. the has-samples flag and the number of sample shapes as int32;
/// 7. the shapes: one byte of ShapeKind each, then for rectangles and ellipses top-left x and
///    y, width and height as doubles, for polygons the number of vertices as int32 and x and y
///    of each as doubles, for other kinds nothing.
class ZELTO_API CClassifySampleFile {
  public:
    static constexpr std::size_t HEADER_SIZE = 312;
    static constexpr const wchar_t* FILE_TAG = L"ZELTO_SampleFileTag";

    /// The numbers of one class. What they mean is the host's affair; statistics per band and
    /// their covariance are the natural reading.
    struct ZELTO_API ClassFields {
        /// The name's 128 UTF-16LE units, with whatever follows its ending zero.
        std::array<unsigned char, 256> m_nameField{};
        std::array<std::int32_t, 3> m_values{};
        std::int32_t m_bandCount = 0;     ///< n; below 1 the arrays and the matrix are empty
        std::vector<double> m_firstArray; ///< n numbers, as the other two
        std::vector<double> m_secondArray;
        std::vector<double> m_thirdArray;
        std::array<std::int32_t, 2> m_moreValues{};
        std::vector<double> m_matrix; ///< n · n numbers, row by row
        /// Shapes are read back only when this is not 0.
        std::int32_t m_hasSamples = 0;
        /// How many shapes are read back. The writer writes all shapes, whatever the flag and
        /// this number say; keeping the three in step is the host's affair.
        std::int32_t m_sampleShapeCount = 0;

        std::wstring GetName() const;
        /// Names of more than 127 UTF-16 units are cut.
        void SetName(const std::wstring& name);
    };

    /// One class with the shapes its samples were drawn from. Copies have shapes of their own.
    struct ZELTO_API ClassRecord : ClassFields {
        std::vector<CDrawShape*> m_sampleShapes; ///< owned

        ClassRecord() = default;
        ClassRecord(const ClassRecord& other);
        ClassRecord& operator=(const ClassRecord& other);
        ~ClassRecord();
    };

    /// No classes and a header of zeros: the tag is the caller's to set before writing.
    CClassifySampleFile() = default;
    /// Copies classes and shapes as well.
    CClassifySampleFile(const CClassifySampleFile& other);
    CClassifySampleFile& operator=(const CClassifySampleFile& other);
    virtual ~CClassifySampleFile();

    /// Replaces the content with the file's. A file that ends early, or whose counts promise
    /// more than it holds, succeeds with what it holds: whole numbers and whole shapes, also of
    /// a class that is cut after its four integers. The number of classes in the header, and of
    /// shapes in the class cut, is then lowered to what was read. Shapes read are complete and
    /// have their extents; kinds other than rectangle, ellipse and polygon give none.
    /// @return 1; 0, with the content as it was, when the file cannot be opened, is shorter than
    ///         its header or has another tag; CGISDataSource::GetLastErrorText() tells which
    int ReadClassifySampleFile(std::wstring path);

    /// Writes the content to a file; an old file is replaced when the new one is complete.
    /// @return 1; 0, with no file touched, for an empty path, when the tag is not FILE_TAG, when
    ///         a class's arrays or matrix have another size than its band count says, or when
    ///         the file cannot be written
    int WriteClassifySampleFile(std::wstring path);

    /// Writes one shape's record at the stream's position.
    /// @return 1; failures stay in the stream's state
    static int SaveSampleAOI(std::fstream& stream, CDrawShape* shape);

    /// Reads one shape's record at the stream's position and appends the shape, which the
    /// caller then owns, to `*shapes`. A kind other than rectangle, ellipse and polygon appends
    /// nothing.
    /// @return 1; 0 when the stream ends within the record and for null
    static int ReadSampleAOI(std::fstream& stream, std::vector<CDrawShape*>* shapes);

    std::wstring GetTag() const;
    void SetTag(const std::wstring& tag);
    /// The header's field; it follows AddClass() and RemoveAllClasses().
    std::int32_t GetClassCount() const;
    /// Null outside the list.
    ClassRecord* GetClass(int index) const;
    /// Appends a copy.
    void AddClass(const ClassRecord& record);
    void RemoveAllClasses();
    /// Path of the last file that could be opened for reading, whatever it held.
    const std::wstring& GetFileName() const { return m_fileName; }

  protected:
    std::array<unsigned char, HEADER_SIZE> m_header{};
    std::vector<std::unique_ptr<ClassRecord>> m_classes;
    std::wstring m_fileName;

  private:
    void UpdateClassCount();
};
