#pragma once

/// @file
/// The enumerations that all data sources share. Their values are fixed: they are stored in
/// files and passed to GDAL.

/// Result of most operations; anything but GIS_SUCCESS is a failure. The value 1 is not used.
enum GISError : int {
    GIS_SUCCESS = 0,
    GIS_OPEN_FAILED = 2,   ///< no driver could open the file
    GIS_NOT_SUPPORTED = 3, ///< no driver recognises the file, or it holds nothing usable
    GIS_FAILED = 4,        ///< bad argument, missing driver, or a GDAL call reported an error
};

/// How a data source is opened; the values are GDAL's access flags.
enum GISDataAccess : int { GIS_READONLY = 0, GIS_UPDATE = 1 };

/// The kind of a data source.
enum GISDataSourceType : int { DS_RASTER = 1, DS_VECTOR = 2, DS_AOI = 3 };

/// How a data source is displayed. Values other than these belong to the host; for a raster
/// with one shown band 1 selects its colour ramp.
enum DataDisplayType : int { DISPLAY_DEFAULT = 0, DISPLAY_CLASSIFIED = 2 };

/// Pixel types with GDAL's numbering, so that a value passes straight to raster I/O.
enum PixelDataType : int {
    PDT_Unknown = 0,
    PDT_Byte = 1,
    PDT_UInt16 = 2,
    PDT_Int16 = 3,
    PDT_UInt32 = 4,
    PDT_Int32 = 5,
    PDT_Float32 = 6,
    PDT_Float64 = 7,
};

/// One value per raster driver that the engine can name.
enum RasterDataFormat : int {
    RDF_Unknown = 0,
    RDF_AAIGrid = 1,
    RDF_ADRG = 2,
    RDF_BLX = 3,
    RDF_BMP = 4,
    RDF_BT = 5,
    RDF_DTED = 6,
    RDF_ECW = 7,
    RDF_EHDR = 8,
    RDF_ELAS = 9,
    RDF_ENVI = 10,
    RDF_ERS = 11,
    RDF_FIT = 12,
    RDF_GIF = 13,
    RDF_GSAG = 14,
    RDF_GSBG = 15,
    RDF_GSC = 16,
    RDF_GTX = 17,
    RDF_IDA = 18,
    RDF_ILWIS = 19,
    RDF_HFA = 20,
    RDF_INGR = 21,
    RDF_JPEG = 22,
    RDF_JPEG2000 = 23,
    RDF_MEM = 24,
    RDF_MFF = 25,
    RDF_NITF = 26,
    RDF_NTv2 = 27,
    RDF_PAux = 28,
    RDF_PCIDSK = 29,
    RDF_PCRaster = 30,
    RDF_PNG = 31,
    RDF_PNM = 32,
    RDF_RMF = 33,
    RDF_RMF2 = 34,
    RDF_SAGA = 35,
    RDF_SGI = 36,
    RDF_SRTMHGT = 37,
    RDF_GTiff = 38,
    RDF_GTiffVariant39 = 39,
    RDF_GTiffVariant40 = 40,
    RDF_TSX = 41,
    RDF_USGSDEM = 42,
    RDF_VRT = 43,
    RDF_XPM = 44,
    RDF_XYZ = 45,
};
