#pragma once

#include <gdal_priv.h>

#include <algorithm>

namespace zelto::test {

/// Bytes of 5 that belong to no driver and to no file.
class BareDataset : public GDALDataset {
  public:
    BareDataset(int width, int height, int bandCount) {
        nRasterXSize = width;
        nRasterYSize = height;
        for (int number = 1; number <= bandCount; ++number)
            SetBand(number, new Band(*this, number));
    }

  private:
    class Band : public GDALRasterBand {
      public:
        Band(BareDataset& dataset, int number) {
            poDS = &dataset;
            nBand = number;
            eDataType = GDT_Byte;
            nBlockXSize = dataset.GetRasterXSize();
            nBlockYSize = 1;
        }

      protected:
        CPLErr IReadBlock(int /*column*/, int /*row*/, void* block) override {
            std::fill_n(static_cast<unsigned char*>(block), nBlockXSize, 5);
            return CE_None;
        }
    };
};

/// A band that says it is one of a data set, which does not know it.
class StrayBand : public GDALRasterBand {
  public:
    StrayBand(GDALDataset& dataset, int number) {
        poDS = &dataset;
        nBand = number;
        nRasterXSize = dataset.GetRasterXSize();
        nRasterYSize = dataset.GetRasterYSize();
        eDataType = GDT_Byte;
        nBlockXSize = nRasterXSize;
        nBlockYSize = 1;
    }

  protected:
    CPLErr IReadBlock(int /*column*/, int /*row*/, void* /*block*/) override { return CE_Failure; }
};

} // namespace zelto::test
