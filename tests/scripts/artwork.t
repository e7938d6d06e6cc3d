# SPDX-License-Identifier: Apache-2.0
# The icons of the operators and the wallpapers of mray, as the desk wants them: each operator has an icon, each
# picture a drawing, and each is as its drawing is now.
use strict;
use warnings;
use Digest::MD5;
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(get);
use Test::More;

my $kMostRowBytes = 4096;           # what the desk reads for one channel of one row
my $kIconSize = 40;                 # width and height of every icon
my @kMostOfWallpaper = (1600, 1000);
my $kTile = 'Grid';                 # the wallpaper that is to be repeated ...
my $kTileStep = 64;                 # ... and the pixels after which its lines do so
my $root = "$FindBin::Bin/../..";
my $library = "$root/installation/mray";

# A picture as the desk reads it, the lowest row first: {width, height, channels, label, rows}, and what is wrong
# with it.
sub picture {
	my ($path) = @_;
	my $file = get($path) // '';
	return ({}, 'no header') if length $file < 512;
	my ($magic, $storage, $bytes, $dimension, $width, $height, $channels, $label) = unpack 'n C C n4 x12 Z80', $file;
	my %picture = (width => $width, height => $height, channels => $channels, label => $label);
	return (\%picture, 'no SGI image') if $magic != 474;
	return (\%picture, 'a kind that is not read')
		if $storage != 1 || $bytes != 1 || $dimension != 3 || $channels < 3 || $channels > 4;
	my $entries = $height * $channels;
	my @tables = unpack 'N*', substr $file, 512, 8 * $entries;
	return (\%picture, 'tables cut short') if @tables != 2 * $entries;
	for my $entry (0 .. $entries - 1) {
		my ($start, $length) = @tables[$entry, $entries + $entry];
		return (\%picture, "row $entry has $length bytes") if $length < 1 || $length > $kMostRowBytes;
		return (\%picture, "row $entry lies outside") if $start + $length > length $file;
		my $row = unpacked(substr $file, $start, $length) // return (\%picture, "row $entry does not end");
		return (\%picture, "row $entry has " . length($row) . ' pixels') if length $row != $width;
		push @{ $picture{rows}[$entry / $height] }, $row;
	}
	return (\%picture, '');
}

sub unpacked {
	my ($data) = @_;
	my $row = '';
	for (my $at = 0; $at < length $data;) {
		my $code = ord substr $data, $at++, 1;
		return $row if $code == 0;
		my $count = $code & 127;
		$row .= $code & 128 ? substr($data, $at, $count) : substr($data, $at, 1) x $count;
		$at += $code & 128 ? $count : 1;
	}
	return undef;
}

sub names { my ($pattern) = @_; return sort map { m{([^/]+)\.\w+$} } glob $pattern }

# ---------------------------------------------------------------- operators

my %operators;
for my $path (glob "$library/menu/*/*") {
	my $text = get($path);
	next if $text =~ /^(?:\s+|#[^\n]*\n)*(?:\z|tavrn-version\b)/;
	my ($name) = $path =~ /\.(\w+)$/;
	$operators{$name} = 1;
	my ($icon) = $text =~ /^iconimg "([^"]+)"$/m;
	is($icon, "mray/icons/$name.sgi", "$name has its own icon");
	like($text, qr/^icontext "\w[\w ]*"$/m, 'and a word for a desk without icons');
}
cmp_ok(scalar keys %operators, '>', 25, 'there are operators');
is(join(' ', names("$library/icons/*")), join(' ', sort keys %operators), 'no icon is missing or idle');

my %seen;
for my $name (sort keys %operators) {
	my ($icon, $fault) = picture("$library/icons/$name.sgi");
	is($fault, '', "the icon of $name can be read");
	is("$icon->{width} x $icon->{height}", "$kIconSize x $kIconSize", 'it is as large as all of them');
	is($icon->{channels}, 4, 'it has a transparent ground');
	next if $fault;
	my @alpha = map { [unpack 'C*', $_] } @{ $icon->{rows}[3] };
	my @rim = (@{ $alpha[0] }, @{ $alpha[-1] }, map { @$_[0, -1] } @alpha);
	is((grep { $_ } @rim), 0, 'which goes all round');
	cmp_ok(scalar(grep { $_ == 255 } map { @$_ } @alpha), '>', $kIconSize * $kIconSize / 6, 'and a body on it');
	push @{ $seen{ join '', map { @$_ } @{ $icon->{rows} } } }, $name;
}
is(join(', ', map { "@$_" } grep { @$_ > 1 } values %seen), '', 'no two look the same');

# ---------------------------------------------------------------- drawings

for (['operators', 'icons'], ['wallpapers', 'wallpapers']) {
	my ($drawings, $pictures) = @$_;
	my @names = names("$root/artwork/$drawings/*.svg");
	cmp_ok(scalar @names, '>', 1, "there are drawings of $drawings");
	is(join(' ', names("$library/$pictures/*")), join(' ', @names), 'each has a picture and each picture has one');
	for my $name (@names) {
		my $drawing = get("$root/artwork/$drawings/$name.svg");
		my ($picture) = picture("$library/$pictures/$name.sgi");
		is($picture->{label}, "$name.svg " . Digest::MD5::md5_hex($drawing),
			"$name is as it is drawn; run scripts/artwork.sh after a change");
		unlike($drawing, qr/<(?:text|image)\b|href="[^#]/, 'with nothing from outside of it, such as a font');
	}
}

# ---------------------------------------------------------------- wallpapers

my ($folder) = get("$library/tavrn.def") =~ /^imagebrowser_dir\s+(\S+)$/m;
is($folder, 'wallpapers', 'the dialog for wallpapers opens in their folder');
for my $name (names("$library/wallpapers/*")) {
	my ($picture, $fault) = picture("$library/wallpapers/$name.sgi");
	is($fault, '', "wallpaper $name can be read");
	is($picture->{channels}, 3, 'it has no holes');
	cmp_ok($picture->{width}, '<=', $kMostOfWallpaper[0], 'it is no wider than told');
	cmp_ok($picture->{height}, '<=', $kMostOfWallpaper[1], 'nor higher');
	next if $fault;
	my ($least, $most) = (255, 0);
	for my $bytes (map { unpack 'C*', $_ } map { @$_ } @{ $picture->{rows} }) {
		$least = $bytes if $bytes < $least;
		$most = $bytes if $bytes > $most;
	}
	cmp_ok($most, '<', 128, 'it is dark, so that wires stand out');
	cmp_ok($most - $least, '<', 80, 'and calm');
}
my ($tile) = picture("$library/wallpapers/$kTile.sgi");
is($tile->{width} % $kTileStep, 0, 'the tile ends where its lines begin again, to the right');
is($tile->{height} % $kTileStep, 0, 'and upward');
for my $rows (@{ $tile->{rows} }) {
	my @unlike = grep { $rows->[$_] ne $rows->[($_ + $kTileStep) % @$rows] } 0 .. $#$rows;
	is("@unlike", '', 'its rows repeat, across the seam as well');
	@unlike = grep { substr($_, $kTileStep) . substr($_, 0, $kTileStep) ne $_ } @$rows;
	is(scalar @unlike, 0, 'and its columns');
}

done_testing;
