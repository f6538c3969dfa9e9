<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>AreaFiles</name>
    <message>
        <source>not a file of areas</source>
        <translation>不是区域文件</translation>
    </message>
    <message>
        <source>it holds no areas</source>
        <translation>其中没有区域</translation>
    </message>
    <message>
        <source>a shape cannot be saved</source>
        <translation>有图形无法保存</translation>
    </message>
    <message>
        <source>cannot be written</source>
        <translation>无法写入</translation>
    </message>
</context>
<context>
    <name>HistogramWork</name>
    <message>
        <source>its pixels cannot be read</source>
        <translation>像元无法读取</translation>
    </message>
</context>
<context>
    <name>ImageWork</name>
    <message>
        <source>cannot be written</source>
        <translation>无法写入</translation>
    </message>
    <message>
        <source>cannot be opened</source>
        <translation>无法打开</translation>
    </message>
    <message>
        <source>not a reference system</source>
        <translation>不是坐标系</translation>
    </message>
    <message>
        <source>it can only be read</source>
        <translation>只能读取</translation>
    </message>
    <message>
        <source>the format cannot store a place</source>
        <translation>该格式无法保存位置</translation>
    </message>
    <message>
        <source>the format cannot store a reference system</source>
        <translation>该格式无法保存坐标系</translation>
    </message>
    <message>
        <source>the format cannot hold</source>
        <translation>该格式无法保存</translation>
    </message>
</context>
<context>
    <name>LayerClasses</name>
    <message>
        <source>cannot be written</source>
        <translation>无法写入</translation>
    </message>
</context>
<context>
    <name>LayerSource</name>
    <message>
        <source>not an image that can be shown</source>
        <translation>不是可以显示的影像</translation>
    </message>
    <message>
        <source>the three images have nothing in common</source>
        <translation>三幅影像没有重叠部分</translation>
    </message>
    <message>
        <source>its pixels cannot be read</source>
        <translation>无法读取像素</translation>
    </message>
    <message>
        <source>the stretch cannot be had</source>
        <translation>无法进行该拉伸</translation>
    </message>
</context>
<context>
    <name>LayerStore</name>
    <message>
        <source>another image now; open it again</source>
        <translation>文件已是另一幅影像，请重新打开</translation>
    </message>
    <message>
        <source>not enough memory for the picture</source>
        <translation>内存不足，无法绘制</translation>
    </message>
</context>
<context>
    <name>RegionTable</name>
    <message>
        <source>Shape</source>
        <translation>图形</translation>
    </message>
    <message>
        <source>Band</source>
        <translation>波段</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>像素</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>最小值</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>最大值</translation>
    </message>
    <message>
        <source>Mean</source>
        <translation>均值</translation>
    </message>
    <message>
        <source>Deviation</source>
        <translation>标准差</translation>
    </message>
    <message>
        <source>2 %</source>
        <translation>2 %</translation>
    </message>
    <message>
        <source>98 %</source>
        <translation>98 %</translation>
    </message>
    <message>
        <source>Covariance %1</source>
        <translation>协方差 %1</translation>
    </message>
    <message>
        <source>From</source>
        <translation>起</translation>
    </message>
    <message>
        <source>To</source>
        <translation>止</translation>
    </message>
</context>
<context>
    <name>RegionWork</name>
    <message>
        <source>cannot be opened</source>
        <translation>无法打开</translation>
    </message>
    <message>
        <source>its pixels cannot be read</source>
        <translation>无法读取像素</translation>
    </message>
</context>
<context>
    <name>Report</name>
    <message>
        <source>file</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>format</source>
        <translation>格式</translation>
    </message>
    <message>
        <source>size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>bands</source>
        <translation>波段数</translation>
    </message>
    <message>
        <source>origin</source>
        <translation>原点</translation>
    </message>
    <message>
        <source>pixel size</source>
        <translation>像元大小</translation>
    </message>
    <message>
        <source>geotransform</source>
        <translation>地理变换</translation>
    </message>
    <message>
        <source>extent</source>
        <translation>范围</translation>
    </message>
    <message>
        <source>coordinates</source>
        <translation>坐标系</translation>
    </message>
    <message>
        <source>control points</source>
        <translation>控制点</translation>
    </message>
    <message>
        <source>datum</source>
        <translation>基准面</translation>
    </message>
    <message>
        <source>units</source>
        <translation>单位</translation>
    </message>
    <message>
        <source>band</source>
        <translation>波段</translation>
    </message>
    <message>
        <source>type</source>
        <translation>类型</translation>
    </message>
    <message>
        <source>block</source>
        <translation>块</translation>
    </message>
    <message>
        <source>no-data</source>
        <translation>无数据值</translation>
    </message>
    <message>
        <source>colours</source>
        <translation>颜色数</translation>
    </message>
    <message>
        <source>overviews</source>
        <translation>金字塔</translation>
    </message>
    <message>
        <source>point</source>
        <translation>点</translation>
    </message>
    <message>
        <source>column</source>
        <translation>列</translation>
    </message>
    <message>
        <source>row</source>
        <translation>行</translation>
    </message>
    <message>
        <source>value</source>
        <translation>值</translation>
    </message>
    <message>
        <source>red</source>
        <translation>红</translation>
    </message>
    <message>
        <source>green</source>
        <translation>绿</translation>
    </message>
    <message>
        <source>blue</source>
        <translation>蓝</translation>
    </message>
    <message>
        <source>name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>sub-data-set</source>
        <translation>子数据集</translation>
    </message>
    <message>
        <source>description</source>
        <translation>说明</translation>
    </message>
</context>
<context>
    <name>SampleWork</name>
    <message>
        <source>cannot be written</source>
        <translation>无法写入</translation>
    </message>
    <message>
        <source>not a file of samples</source>
        <translation>不是样本文件</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Shows images of remote sensing.</source>
        <translation>显示遥感影像。</translation>
    </message>
    <message>
        <source>Images to open</source>
        <translation>要打开的影像</translation>
    </message>
    <message>
        <source>End when the first picture is shown; to measure that</source>
        <translation>显示第一幅画面后结束，用于测量</translation>
    </message>
</context>
<context>
    <name>zelto::view::AreaActions</name>
    <message>
        <source>P&amp;an</source>
        <translation>平移(&amp;A)</translation>
    </message>
    <message>
        <source>Drag the map</source>
        <translation>拖动地图</translation>
    </message>
    <message>
        <source>H</source>
        <translation>H</translation>
    </message>
    <message>
        <source>&amp;Select</source>
        <translation>选择(&amp;S)</translation>
    </message>
    <message>
        <source>Select, move and reshape shapes</source>
        <translation>选择、移动和修改图形</translation>
    </message>
    <message>
        <source>V</source>
        <translation>V</translation>
    </message>
    <message>
        <source>Draw &amp;points</source>
        <translation>绘制点(&amp;P)</translation>
    </message>
    <message>
        <source>Click to set a point</source>
        <translation>单击放置一个点</translation>
    </message>
    <message>
        <source>P</source>
        <translation>P</translation>
    </message>
    <message>
        <source>Draw &amp;lines</source>
        <translation>绘制线(&amp;L)</translation>
    </message>
    <message>
        <source>Click for each vertex, double-click to finish</source>
        <translation>逐个单击顶点，双击结束</translation>
    </message>
    <message>
        <source>L</source>
        <translation>L</translation>
    </message>
    <message>
        <source>Draw p&amp;olygons</source>
        <translation>绘制多边形(&amp;O)</translation>
    </message>
    <message>
        <source>G</source>
        <translation>G</translation>
    </message>
    <message>
        <source>Draw &amp;rectangles</source>
        <translation>绘制矩形(&amp;R)</translation>
    </message>
    <message>
        <source>Drag from corner to corner; Shift: square</source>
        <translation>从一角拖到对角；按住 Shift 为正方形</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Draw &amp;ellipses</source>
        <translation>绘制椭圆(&amp;E)</translation>
    </message>
    <message>
        <source>Drag from corner to corner; Shift: circle</source>
        <translation>从一角拖到对角；按住 Shift 为圆</translation>
    </message>
    <message>
        <source>E</source>
        <translation>E</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>撤销(&amp;U)</translation>
    </message>
    <message>
        <source>Take the last edit of shapes back</source>
        <translation>撤销对图形的上一次编辑</translation>
    </message>
    <message>
        <source>R&amp;edo</source>
        <translation>重做(&amp;E)</translation>
    </message>
    <message>
        <source>Make the edit that was taken back again</source>
        <translation>重做刚撤销的编辑</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>删除(&amp;D)</translation>
    </message>
    <message>
        <source>Delete the selected shapes, or the vertex last taken</source>
        <translation>删除所选图形，或最后选中的顶点</translation>
    </message>
    <message>
        <source>Select &amp;all</source>
        <translation>全选(&amp;A)</translation>
    </message>
    <message>
        <source>Select all shapes</source>
        <translation>选择全部图形</translation>
    </message>
    <message>
        <source>Open a&amp;reas…</source>
        <translation>打开区域(&amp;R)…</translation>
    </message>
    <message>
        <source>Add the shapes of a file of areas</source>
        <translation>添加区域文件中的图形</translation>
    </message>
    <message>
        <source>Ctrl+Shift+A</source>
        <translation>Ctrl+Shift+A</translation>
    </message>
    <message>
        <source>Open areas</source>
        <translation>打开区域</translation>
    </message>
    <message>
        <source>Areas (*.aif *.shp *.gpkg *.geojson *.json *.kml);;All files (*)</source>
        <translation>区域文件 (*.aif *.shp *.gpkg *.geojson *.json *.kml);;所有文件 (*)</translation>
    </message>
    <message>
        <source>Sa&amp;ve areas…</source>
        <translation>保存区域(&amp;V)…</translation>
    </message>
    <message>
        <source>Save the selected shapes that cover ground, or all</source>
        <translation>保存所选的面状图形，未选则保存全部</translation>
    </message>
    <message>
        <source>Save areas</source>
        <translation>保存区域</translation>
    </message>
    <message>
        <source>Areas of interest (*.aif);;Shapefiles (*.shp)</source>
        <translation>感兴趣区 (*.aif);;Shapefile (*.shp)</translation>
    </message>
    <message>
        <source>Show &amp;only the areas</source>
        <translation>只显示区域(&amp;O)</translation>
    </message>
    <message>
        <source>Leave out what is outside the areas</source>
        <translation>不显示区域以外的部分</translation>
    </message>
    <message>
        <source>Ctrl+M</source>
        <translation>Ctrl+M</translation>
    </message>
    <message>
        <source>S&amp;tatistics</source>
        <translation>统计(&amp;T)</translation>
    </message>
    <message>
        <source>Statistics of the layer in the selected areas, in all, or of the whole image</source>
        <translation>统计所选区域、全部区域或整幅影像</translation>
    </message>
    <message>
        <source>Ctrl+T</source>
        <translation>Ctrl+T</translation>
    </message>
    <message>
        <source>Statistics of eac&amp;h shape</source>
        <translation>逐个图形统计(&amp;H)</translation>
    </message>
    <message>
        <source>The same for each shape by itself</source>
        <translation>对每个图形分别统计</translation>
    </message>
    <message>
        <source>Ctrl+Shift+T</source>
        <translation>Ctrl+Shift+T</translation>
    </message>
    <message>
        <source>Opening areas</source>
        <translation>正在打开区域</translation>
    </message>
    <message>
        <source>Saving areas</source>
        <translation>正在保存区域</translation>
    </message>
    <message>
        <source>%1 is saved.</source>
        <translation>已保存 %1。</translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation>统计</translation>
    </message>
    <message>
        <source>Hi&amp;stograms</source>
        <translation>直方图(&amp;S)</translation>
    </message>
    <message>
        <source>How often each value occurs in the selected areas, in all, or in the whole image</source>
        <translation>各值在所选区域、全部区域或整幅图像中出现的次数</translation>
    </message>
    <message>
        <source>Ctrl+Alt+H</source>
        <translation>Ctrl+Alt+H</translation>
    </message>
    <message>
        <source>Histograms</source>
        <translation>直方图</translation>
    </message>
    <message>
        <source>%1, the whole image</source>
        <translation>%1，整幅影像</translation>
    </message>
    <message numerus="yes">
        <source>%1, all %n shape(s)</source>
        <translation>
            <numerusform>%1，全部 %n 个图形</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1, %n selected shape(s)</source>
        <translation>
            <numerusform>%1，所选 %n 个图形</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zelto::view::AreaModel</name>
    <message>
        <source>Draw</source>
        <translation>绘制</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Delete all</source>
        <translation>全部删除</translation>
    </message>
    <message>
        <source>Choose class</source>
        <translation>指定类别</translation>
    </message>
</context>
<context>
    <name>zelto::view::BandForm</name>
    <message>
        <source>Red, green and blue</source>
        <translation>红绿蓝合成</translation>
    </message>
    <message>
        <source>A single band</source>
        <translation>单波段</translation>
    </message>
    <message>
        <source>Show three bands as colours, or one</source>
        <translation>以三个波段合成彩色，或显示一个波段</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>显示</translation>
    </message>
    <message>
        <source>The band to show</source>
        <translation>要显示的波段</translation>
    </message>
    <message>
        <source>Colours of a single band</source>
        <translation>单波段的颜色</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Colour ramp</source>
        <translation>色带</translation>
    </message>
    <message>
        <source>Band</source>
        <translation>波段</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>红</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>绿</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>蓝</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>波段 %1</translation>
    </message>
</context>
<context>
    <name>zelto::view::ClassLegend</name>
    <message>
        <source>Colour</source>
        <translation>颜色</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>值</translation>
    </message>
    <message>
        <source>Class</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Colours of the file</source>
        <translation>文件中的颜色</translation>
    </message>
    <message>
        <source>A double click on a colour chooses another one, on a name edits it</source>
        <translation>双击颜色可另选颜色，双击名称可编辑</translation>
    </message>
    <message>
        <source>Show the classes as the file has them</source>
        <translation>按文件中的样子显示类别</translation>
    </message>
</context>
<context>
    <name>zelto::view::CompositionDialog</name>
    <message>
        <source>Open as red, green and blue</source>
        <translation>按红绿蓝合成打开</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>红</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>绿</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>蓝</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>影像</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>选择…</translation>
    </message>
    <message>
        <source>Band </source>
        <translation>波段 </translation>
    </message>
    <message>
        <source>Open an image</source>
        <translation>打开影像</translation>
    </message>
</context>
<context>
    <name>zelto::view::DisplayPanel</name>
    <message>
        <source>Hue</source>
        <translation>色调</translation>
    </message>
    <message>
        <source>Intensity</source>
        <translation>亮度</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>饱和度</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>对比度</translation>
    </message>
    <message>
        <source>Transparency</source>
        <translation>透明度</translation>
    </message>
    <message>
        <source>No image</source>
        <translation>没有影像</translation>
    </message>
</context>
<context>
    <name>zelto::view::FileActions</name>
    <message>
        <source>&amp;Open…</source>
        <translation>打开(&amp;O)…</translation>
    </message>
    <message>
        <source>Open images as layers</source>
        <translation>将影像作为图层打开</translation>
    </message>
    <message>
        <source>Open as &amp;red, green and blue…</source>
        <translation>按红绿蓝合成打开(&amp;R)…</translation>
    </message>
    <message>
        <source>Show one band of each of three images as colours</source>
        <translation>用三幅影像各一个波段合成彩色</translation>
    </message>
    <message>
        <source>Ctrl+Shift+O</source>
        <translation>Ctrl+Shift+O</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>退出(&amp;Q)</translation>
    </message>
    <message>
        <source>End the program</source>
        <translation>结束程序</translation>
    </message>
    <message>
        <source>Open images</source>
        <translation>打开影像</translation>
    </message>
    <message numerus="yes">
        <source>%1 holds %n images; the first one is shown.</source>
        <translation>
            <numerusform>%1 含有 %n 幅影像，当前显示第一幅。</numerusform>
        </translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>选择…</translation>
    </message>
    <message>
        <source>Images of %1</source>
        <translation>%1 中的影像</translation>
    </message>
    <message>
        <source>Image to open:</source>
        <translation>要打开的影像：</translation>
    </message>
    <message>
        <source>%1 is large and has no pyramid: views of all of it are slow.</source>
        <translation>%1 较大且没有金字塔，全图显示会很慢。</translation>
    </message>
    <message>
        <source>Build one</source>
        <translation>建立金字塔</translation>
    </message>
    <message>
        <source>Clear this list</source>
        <translation>清空列表</translation>
    </message>
</context>
<context>
    <name>zelto::view::HistogramPanel</name>
    <message>
        <source>The band whose histogram is shown</source>
        <translation>显示其直方图的波段</translation>
    </message>
    <message>
        <source>All bands</source>
        <translation>所有波段</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>波段 %1</translation>
    </message>
</context>
<context>
    <name>zelto::view::HistogramView</name>
    <message>
        <source>Drag the bounds to stretch between them</source>
        <translation>拖动边界，在其间拉伸</translation>
    </message>
</context>
<context>
    <name>zelto::view::LabeledSlider</name>
    <message>
        <source>%1; a double click puts it back</source>
        <translation>%1；双击复位</translation>
    </message>
</context>
<context>
    <name>zelto::view::LayerActions</name>
    <message>
        <source>&amp;Remove layer</source>
        <translation>移除图层(&amp;R)</translation>
    </message>
    <message>
        <source>Take the layer out of the window</source>
        <translation>从窗口中移除该图层</translation>
    </message>
    <message>
        <source>Ctrl+Backspace</source>
        <translation>Ctrl+Backspace</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation>上移(&amp;U)</translation>
    </message>
    <message>
        <source>Show the layer above the next one</source>
        <translation>将图层上移一层</translation>
    </message>
    <message>
        <source>Ctrl+Shift+Up</source>
        <translation>Ctrl+Shift+Up</translation>
    </message>
    <message>
        <source>Move &amp;down</source>
        <translation>下移(&amp;D)</translation>
    </message>
    <message>
        <source>Show the layer below the next one</source>
        <translation>将图层下移一层</translation>
    </message>
    <message>
        <source>Ctrl+Shift+Down</source>
        <translation>Ctrl+Shift+Down</translation>
    </message>
    <message>
        <source>Show or &amp;hide</source>
        <translation>显示或隐藏(&amp;H)</translation>
    </message>
    <message>
        <source>Show or hide the layer</source>
        <translation>显示或隐藏图层</translation>
    </message>
    <message>
        <source>Ctrl+H</source>
        <translation>Ctrl+H</translation>
    </message>
    <message>
        <source>&amp;Copy display</source>
        <translation>复制显示设置(&amp;C)</translation>
    </message>
    <message>
        <source>Take up how the layer is shown</source>
        <translation>复制该图层的显示设置</translation>
    </message>
    <message>
        <source>Ctrl+Shift+C</source>
        <translation>Ctrl+Shift+C</translation>
    </message>
    <message>
        <source>&amp;Paste display</source>
        <translation>粘贴显示设置(&amp;P)</translation>
    </message>
    <message>
        <source>Show the layer as the one whose display was copied</source>
        <translation>按复制的显示设置显示该图层</translation>
    </message>
    <message>
        <source>Ctrl+Shift+V</source>
        <translation>Ctrl+Shift+V</translation>
    </message>
    <message>
        <source>Reset d&amp;isplay</source>
        <translation>重置显示(&amp;I)</translation>
    </message>
    <message>
        <source>Show the layer as when first opened</source>
        <translation>恢复到刚打开时的显示</translation>
    </message>
    <message>
        <source>Ctrl+Shift+R</source>
        <translation>Ctrl+Shift+R</translation>
    </message>
</context>
<context>
    <name>zelto::view::LayersPanel</name>
    <message>
        <source>Layers</source>
        <translation>图层</translation>
    </message>
    <message>
        <source>%1 (opening…)</source>
        <translation>%1（正在打开…）</translation>
    </message>
    <message numerus="yes">
        <source>%1
%2 × %3 pixels, %n band(s) of %4</source>
        <translation>
            <numerusform>%1
%2 × %3 像素，%n 个波段，%4</numerusform>
        </translation>
    </message>
    <message>
        <source>Shown in the first layer&apos;s reference system</source>
        <translation>按第一个图层的坐标系显示</translation>
    </message>
    <message>
        <source>%1 of %2 in memory</source>
        <translation>内存 %1，上限 %2</translation>
    </message>
    <message>
        <source>What is kept of all layers together: blocks of the files, drawings, histograms, open files. Beyond the bound what was seen longest ago is let go, and made again when it is wanted.</source>
        <translation>全部图层共同占用的内存：文件数据块、绘制结果、直方图和已打开的文件。超过上限时，先释放最久未显示的内容，需要时再重新生成。</translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) closed for that.</source>
        <translation>
            <numerusform>为此已关闭 %n 个文件。</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zelto::view::MainWindow</name>
    <message>
        <source>Show or hide the panel</source>
        <translation>显示或隐藏面板</translation>
    </message>
    <message>
        <source>Overview</source>
        <translation>鹰眼</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>图层</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>显示</translation>
    </message>
    <message>
        <source>Training classes</source>
        <translation>训练类别</translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation>统计</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>Open &amp;recent</source>
        <translation>最近打开(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>视图(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Layer</source>
        <translation>图层(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Areas</source>
        <translation>区域(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Training</source>
        <translation>训练(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Work</source>
        <translation>处理(&amp;W)</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
    <message>
        <source>%1: cancelled</source>
        <translation>%1：已取消</translation>
    </message>
    <message>
        <source>Histograms</source>
        <translation>直方图</translation>
    </message>
    <message>
        <source>Open an image (%1), or drop one here</source>
        <translation>打开影像（%1），或拖放到此处</translation>
    </message>
    <message>
        <source>Shapes are not saved</source>
        <translation>图形尚未保存</translation>
    </message>
    <message>
        <source>The shapes on the map have not been saved.</source>
        <translation>地图上的图形尚未保存。</translation>
    </message>
</context>
<context>
    <name>zelto::view::MapView</name>
    <message>
        <source>Map</source>
        <translation>地图</translation>
    </message>
</context>
<context>
    <name>zelto::view::MessageBar</name>
    <message>
        <source>Close this message</source>
        <translation>关闭此消息</translation>
    </message>
</context>
<context>
    <name>zelto::view::OverviewMap</name>
    <message>
        <source>Click or drag to move the view</source>
        <translation>单击或拖动以移动视图</translation>
    </message>
</context>
<context>
    <name>zelto::view::PlaceDialog</name>
    <message>
        <source>Sides of the whole image, north up</source>
        <translation>整幅影像的四边，上方为北</translation>
    </message>
    <message>
        <source>Georeference %1</source>
        <translation>为 %1 定位</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>左</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>上</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>右</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>下</translation>
    </message>
    <message>
        <source>EPSG:32650, or any text that names a system; empty: as it is</source>
        <translation>EPSG:32650 等坐标系名称；留空则不变</translation>
    </message>
    <message>
        <source>Reference system</source>
        <translation>坐标系</translation>
    </message>
    <message>
        <source>Write into the file</source>
        <translation>写入文件</translation>
    </message>
    <message>
        <source>Left is less than right, and bottom less than top.</source>
        <translation>左须小于右，下须小于上。</translation>
    </message>
</context>
<context>
    <name>zelto::view::PolygonDialog</name>
    <message>
        <source>Pixels that touch at a corner belong together</source>
        <translation>角点相接的像素视为相连</translation>
    </message>
    <message>
        <source>Polygons of %1</source>
        <translation>%1 的多边形</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>选择…</translation>
    </message>
    <message>
        <source>Band</source>
        <translation>波段</translation>
    </message>
    <message>
        <source>Vector file</source>
        <translation>矢量文件</translation>
    </message>
    <message>
        <source>Vector files (*.shp *.gpkg *.geojson)</source>
        <translation>矢量文件 (*.shp *.gpkg *.geojson)</translation>
    </message>
</context>
<context>
    <name>zelto::view::PropertiesDialog</name>
    <message>
        <source>Bands</source>
        <translation>波段</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>影像</translation>
    </message>
    <message>
        <source>Coordinate system</source>
        <translation>坐标系</translation>
    </message>
    <message>
        <source>As text</source>
        <translation>文本</translation>
    </message>
    <message>
        <source>Control points</source>
        <translation>控制点</translation>
    </message>
    <message>
        <source>Classes</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Sub-data-sets</source>
        <translation>子数据集</translation>
    </message>
</context>
<context>
    <name>zelto::view::RegionHistogramPlot</name>
    <message>
        <source>How often each value occurs in the area</source>
        <translation>各值在区域中出现的次数</translation>
    </message>
    <message>
        <source>No values</source>
        <translation>没有值</translation>
    </message>
</context>
<context>
    <name>zelto::view::SelectTool</name>
    <message>
        <source>Reshape</source>
        <translation>修改形状</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>移动</translation>
    </message>
    <message>
        <source>Add a vertex</source>
        <translation>添加顶点</translation>
    </message>
    <message>
        <source>Remove a vertex</source>
        <translation>删除顶点</translation>
    </message>
</context>
<context>
    <name>zelto::view::SpectralPlot</name>
    <message>
        <source>Mean of each band, and two deviations around it</source>
        <translation>各波段均值及两倍标准差范围</translation>
    </message>
    <message>
        <source>Give shapes a class, then compute the spectra</source>
        <translation>先为图形指定类别，再计算光谱</translation>
    </message>
</context>
<context>
    <name>zelto::view::StatusLine</name>
    <message>
        <source>Column and row under the pointer</source>
        <translation>光标处的列号和行号</translation>
    </message>
    <message>
        <source>Ground coordinates, latitude and longitude</source>
        <translation>地面坐标、纬度和经度</translation>
    </message>
    <message>
        <source>Value of each band, and the class</source>
        <translation>各波段的值和类别</translation>
    </message>
    <message>
        <source>Size of a pixel of the image on the screen</source>
        <translation>影像像素在屏幕上的大小</translation>
    </message>
    <message>
        <source>Memory that the program uses</source>
        <translation>程序占用的内存</translation>
    </message>
</context>
<context>
    <name>zelto::view::StretchForm</name>
    <message>
        <source>How the values become brightness</source>
        <translation>像素值到亮度的变换</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>自动</translation>
    </message>
    <message>
        <source>Between percentiles</source>
        <translation>百分比拉伸</translation>
    </message>
    <message>
        <source>Two deviations around the mean</source>
        <translation>均值两倍标准差</translation>
    </message>
    <message>
        <source>Linear</source>
        <translation>线性</translation>
    </message>
    <message>
        <source>None (8-bit values as they are)</source>
        <translation>不拉伸（8 位值原样显示）</translation>
    </message>
    <message>
        <source>Gamma curve</source>
        <translation>伽马曲线</translation>
    </message>
    <message>
        <source>Histogram equalisation</source>
        <translation>直方图均衡</translation>
    </message>
    <message>
        <source>Equalisation between bounds</source>
        <translation>边界内均衡</translation>
    </message>
    <message>
        <source>Auto levels</source>
        <translation>自动色阶</translation>
    </message>
    <message>
        <source>Wallis filter</source>
        <translation>Wallis 滤波</translation>
    </message>
    <message>
        <source>Display range, spread</source>
        <translation>显示范围拉伸</translation>
    </message>
    <message>
        <source>Display range, zoomed</source>
        <translation>显示范围缩放</translation>
    </message>
    <message>
        <source>Stretch</source>
        <translation>拉伸</translation>
    </message>
    <message>
        <source>Darkest</source>
        <translation>最暗</translation>
    </message>
    <message>
        <source>Percent of the values that become black</source>
        <translation>变为黑色的值的百分比</translation>
    </message>
    <message>
        <source>Brightest</source>
        <translation>最亮</translation>
    </message>
    <message>
        <source>Percent of the values below white</source>
        <translation>低于白色的值的百分比</translation>
    </message>
    <message>
        <source>From</source>
        <translation>从</translation>
    </message>
    <message>
        <source>Least value that is spread</source>
        <translation>参与拉伸的最小值</translation>
    </message>
    <message>
        <source>To</source>
        <translation>到</translation>
    </message>
    <message>
        <source>Greatest value that is spread</source>
        <translation>参与拉伸的最大值</translation>
    </message>
    <message>
        <source>Cut off</source>
        <translation>裁剪</translation>
    </message>
    <message>
        <source>Percent of the values cut at each end</source>
        <translation>两端各裁去的百分比</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>伽马</translation>
    </message>
    <message>
        <source>Above 1 brightens the dark parts</source>
        <translation>大于 1 时提亮暗部</translation>
    </message>
    <message>
        <source>Model 1</source>
        <translation>模型 1</translation>
    </message>
    <message>
        <source>Model 2</source>
        <translation>模型 2</translation>
    </message>
    <message>
        <source>Model 3</source>
        <translation>模型 3</translation>
    </message>
    <message>
        <source>Colours</source>
        <translation>颜色模型</translation>
    </message>
    <message>
        <source>By what is in view</source>
        <translation>按当前视图</translation>
    </message>
    <message>
        <source>Stretch by the values in view instead of the whole image</source>
        <translation>按视图内的值而不是整幅影像拉伸</translation>
    </message>
</context>
<context>
    <name>zelto::view::TablePanel</name>
    <message>
        <source>Copy the table</source>
        <translation>复制表格</translation>
    </message>
    <message>
        <source>Save the table as CSV</source>
        <translation>将表格保存为 CSV</translation>
    </message>
    <message>
        <source>The table is on the clipboard.</source>
        <translation>表格已复制到剪贴板。</translation>
    </message>
    <message>
        <source>Save the table</source>
        <translation>保存表格</translation>
    </message>
    <message>
        <source>Tables (*.csv)</source>
        <translation>表格 (*.csv)</translation>
    </message>
    <message>
        <source>%1 is saved.</source>
        <translation>%1 已保存。</translation>
    </message>
</context>
<context>
    <name>zelto::view::TaskLine</name>
    <message>
        <source>Cancel the work</source>
        <translation>取消处理</translation>
    </message>
    <message numerus="yes">
        <source>%n second(s) left</source>
        <translation>
            <numerusform>剩余 %n 秒</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n minute(s) left</source>
        <translation>
            <numerusform>剩余 %n 分钟</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zelto::view::TrainingActions</name>
    <message>
        <source>Open samples</source>
        <translation>打开样本</translation>
    </message>
    <message>
        <source>&amp;New class</source>
        <translation>新建类别(&amp;N)</translation>
    </message>
    <message>
        <source>Make a training class, of the selected shapes where there are such</source>
        <translation>新建训练类别，并包含所选图形</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>&amp;Give shapes the class</source>
        <translation>归入类别(&amp;G)</translation>
    </message>
    <message>
        <source>Add the selected shapes to the class chosen in the panel</source>
        <translation>将所选图形归入面板中选定的类别</translation>
    </message>
    <message>
        <source>Ctrl+G</source>
        <translation>Ctrl+G</translation>
    </message>
    <message>
        <source>&amp;Remove class</source>
        <translation>删除类别(&amp;R)</translation>
    </message>
    <message>
        <source>Remove the class; its shapes stay on the map</source>
        <translation>删除类别，图形仍保留</translation>
    </message>
    <message>
        <source>Ctrl+Shift+N</source>
        <translation>Ctrl+Shift+N</translation>
    </message>
    <message>
        <source>&amp;Spectra</source>
        <translation>光谱(&amp;S)</translation>
    </message>
    <message>
        <source>Mean and deviation of each band under the shapes of each class</source>
        <translation>各类别图形内各波段的均值和标准差</translation>
    </message>
    <message>
        <source>Ctrl+P</source>
        <translation>Ctrl+P</translation>
    </message>
    <message>
        <source>&amp;Open samples…</source>
        <translation>打开样本(&amp;O)…</translation>
    </message>
    <message>
        <source>Add the classes of a sample file</source>
        <translation>添加样本文件中的类别</translation>
    </message>
    <message>
        <source>Ctrl+Shift+E</source>
        <translation>Ctrl+Shift+E</translation>
    </message>
    <message>
        <source>S&amp;ave samples…</source>
        <translation>保存样本(&amp;A)…</translation>
    </message>
    <message>
        <source>Save the classes as a sample file of the current image</source>
        <translation>将类别保存为当前影像的样本文件</translation>
    </message>
    <message>
        <source>Ctrl+Shift+S</source>
        <translation>Ctrl+Shift+S</translation>
    </message>
    <message>
        <source>Save samples</source>
        <translation>保存样本</translation>
    </message>
    <message>
        <source>Samples (*.smp);;All files (*)</source>
        <translation>样本 (*.smp);;所有文件 (*)</translation>
    </message>
    <message>
        <source>Spectra</source>
        <translation>光谱</translation>
    </message>
    <message>
        <source>Opening samples</source>
        <translation>正在打开样本</translation>
    </message>
    <message>
        <source>Saving samples</source>
        <translation>正在保存样本</translation>
    </message>
    <message>
        <source>%1 is saved.</source>
        <translation>已保存 %1。</translation>
    </message>
</context>
<context>
    <name>zelto::view::TrainingClasses</name>
    <message>
        <source>Class %1</source>
        <translation>类别 %1</translation>
    </message>
</context>
<context>
    <name>zelto::view::TrainingPanel</name>
    <message>
        <source>Class</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Shapes</source>
        <translation>图形</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>像素</translation>
    </message>
    <message>
        <source>A double click renames a class, or chooses its colour; the selected class is the one that shapes are given</source>
        <translation>双击可重命名类别或更换颜色；所选类别即图形将归入的类别</translation>
    </message>
</context>
<context>
    <name>zelto::view::ViewActions</name>
    <message>
        <source>&amp;Fit everything</source>
        <translation>全图(&amp;F)</translation>
    </message>
    <message>
        <source>Show all layers</source>
        <translation>显示全部图层</translation>
    </message>
    <message>
        <source>Ctrl+0</source>
        <translation>Ctrl+0</translation>
    </message>
    <message>
        <source>Fit the &amp;layer</source>
        <translation>图层全图(&amp;L)</translation>
    </message>
    <message>
        <source>Show all of the current layer</source>
        <translation>显示当前图层全图</translation>
    </message>
    <message>
        <source>Ctrl+Shift+0</source>
        <translation>Ctrl+Shift+0</translation>
    </message>
    <message>
        <source>&amp;1 : 1</source>
        <translation>&amp;1 : 1</translation>
    </message>
    <message>
        <source>Show each pixel of the layer as one of the screen</source>
        <translation>影像像素与屏幕像素一一对应</translation>
    </message>
    <message>
        <source>Ctrl+1</source>
        <translation>Ctrl+1</translation>
    </message>
    <message>
        <source>Zoom &amp;in</source>
        <translation>放大(&amp;I)</translation>
    </message>
    <message>
        <source>Show less, larger</source>
        <translation>放大显示</translation>
    </message>
    <message>
        <source>Zoom &amp;out</source>
        <translation>缩小(&amp;O)</translation>
    </message>
    <message>
        <source>Show more, smaller</source>
        <translation>缩小显示</translation>
    </message>
    <message>
        <source>Move the view by half of its size</source>
        <translation>将视图移动半屏</translation>
    </message>
    <message>
        <source>Pan left</source>
        <translation>左移</translation>
    </message>
    <message>
        <source>Alt+Shift+Left</source>
        <translation>Alt+Shift+Left</translation>
    </message>
    <message>
        <source>Pan right</source>
        <translation>右移</translation>
    </message>
    <message>
        <source>Alt+Shift+Right</source>
        <translation>Alt+Shift+Right</translation>
    </message>
    <message>
        <source>Pan up</source>
        <translation>上移</translation>
    </message>
    <message>
        <source>Alt+Shift+Up</source>
        <translation>Alt+Shift+Up</translation>
    </message>
    <message>
        <source>Pan down</source>
        <translation>下移</translation>
    </message>
    <message>
        <source>Alt+Shift+Down</source>
        <translation>Alt+Shift+Down</translation>
    </message>
    <message>
        <source>Colours of the &amp;system</source>
        <translation>跟随系统(&amp;S)</translation>
    </message>
    <message>
        <source>Light or dark as the system is</source>
        <translation>随系统使用浅色或深色</translation>
    </message>
    <message>
        <source>Ctrl+Alt+S</source>
        <translation>Ctrl+Alt+S</translation>
    </message>
    <message>
        <source>&amp;Light colours</source>
        <translation>浅色(&amp;L)</translation>
    </message>
    <message>
        <source>Dark text on a light ground</source>
        <translation>浅底深字</translation>
    </message>
    <message>
        <source>Ctrl+Alt+L</source>
        <translation>Ctrl+Alt+L</translation>
    </message>
    <message>
        <source>&amp;Dark colours</source>
        <translation>深色(&amp;D)</translation>
    </message>
    <message>
        <source>Light text on a dark ground</source>
        <translation>深底浅字</translation>
    </message>
    <message>
        <source>Ctrl+Alt+D</source>
        <translation>Ctrl+Alt+D</translation>
    </message>
</context>
<context>
    <name>zelto::view::WorkActions</name>
    <message>
        <source>&amp;Export the view…</source>
        <translation>导出视图(&amp;E)…</translation>
    </message>
    <message>
        <source>Save what the map shows as PNG, or as GeoTIFF with its place</source>
        <translation>将地图内容保存为 PNG 或带坐标的 GeoTIFF</translation>
    </message>
    <message>
        <source>Ctrl+E</source>
        <translation>Ctrl+E</translation>
    </message>
    <message>
        <source>&amp;Properties</source>
        <translation>属性(&amp;P)</translation>
    </message>
    <message>
        <source>What there is to say about the image</source>
        <translation>影像的各项信息</translation>
    </message>
    <message>
        <source>Ctrl+I</source>
        <translation>Ctrl+I</translation>
    </message>
    <message>
        <source>Build a &amp;pyramid</source>
        <translation>建立金字塔(&amp;P)</translation>
    </message>
    <message>
        <source>Make reduced copies beside the image, so that views of all of it are quick</source>
        <translation>在影像旁建立缩小的副本，加快全图显示</translation>
    </message>
    <message>
        <source>Ctrl+Shift+P</source>
        <translation>Ctrl+Shift+P</translation>
    </message>
    <message>
        <source>&amp;Georeference…</source>
        <translation>地理定位(&amp;G)…</translation>
    </message>
    <message>
        <source>Say where the image lies</source>
        <translation>指定影像的位置</translation>
    </message>
    <message>
        <source>Ctrl+Shift+G</source>
        <translation>Ctrl+Shift+G</translation>
    </message>
    <message>
        <source>Building a pyramid</source>
        <translation>正在建立金字塔</translation>
    </message>
    <message>
        <source>%1 has a pyramid.</source>
        <translation>%1 已有金字塔。</translation>
    </message>
    <message>
        <source>Export the view</source>
        <translation>导出视图</translation>
    </message>
    <message>
        <source>Pictures (*.png);;Georeferenced pictures (*.tif *.tiff)</source>
        <translation>图片 (*.png);;带坐标的图片 (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>正在导出</translation>
    </message>
    <message>
        <source>%1 is saved.</source>
        <translation>已保存 %1。</translation>
    </message>
    <message>
        <source>Georeferencing</source>
        <translation>正在定位</translation>
    </message>
    <message>
        <source>Make p&amp;olygons…</source>
        <translation>生成多边形(&amp;O)…</translation>
    </message>
    <message>
        <source>A polygon for every area of equal pixels, in a vector file</source>
        <translation>将相同像素值的连片区域生成多边形，存入矢量文件</translation>
    </message>
    <message>
        <source>Ctrl+Shift+M</source>
        <translation>Ctrl+Shift+M</translation>
    </message>
    <message>
        <source>Making polygons</source>
        <translation>正在生成多边形</translation>
    </message>
    <message>
        <source>&amp;Copy to another format…</source>
        <translation>复制为其他格式(&amp;C)…</translation>
    </message>
    <message>
        <source>Write all bands of the image into a new file</source>
        <translation>将影像的全部波段写入新文件</translation>
    </message>
    <message>
        <source>Ctrl+Alt+C</source>
        <translation>Ctrl+Alt+C</translation>
    </message>
    <message>
        <source>Copy the image</source>
        <translation>复制影像</translation>
    </message>
    <message>
        <source>GeoTIFF (*.tif);;Erdas Imagine (*.img);;PCIDSK (*.pix);;All files (*)</source>
        <translation>GeoTIFF (*.tif);;Erdas Imagine (*.img);;PCIDSK (*.pix);;所有文件 (*)</translation>
    </message>
    <message>
        <source>Copying</source>
        <translation>正在复制</translation>
    </message>
    <message>
        <source>Save c&amp;lasses…</source>
        <translation>保存类别(&amp;L)…</translation>
    </message>
    <message>
        <source>Write the classes and their colours into a file; beside the image it is where they are read from</source>
        <translation>将类别及其颜色写入文件；放在图像旁边时，图像从中读取类别</translation>
    </message>
    <message>
        <source>Ctrl+Shift+L</source>
        <translation>Ctrl+Shift+L</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>属性</translation>
    </message>
    <message>
        <source>Save classes</source>
        <translation>保存类别</translation>
    </message>
    <message>
        <source>Classes of an image (*.acf)</source>
        <translation>图像的类别 (*.acf)</translation>
    </message>
    <message>
        <source>Saving classes</source>
        <translation>正在保存类别</translation>
    </message>
</context>
</TS>
