#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
# The Render Options form of mray: it is whole and in good order, what it offers is
# understood by the scripts, and each of its options does something.
use strict;
use warnings;
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(put get run);
use Test::More;

my ($batch, $renderer) = @ENV{qw(TAVRIN_BATCH MRAY_RENDER)};
plan skip_all => 'TAVRIN_BATCH and MRAY_RENDER do not name the programs' if !defined $batch || !defined $renderer;
my $root = "$FindBin::Bin/../..";
my $dir = tempdir(CLEANUP => 1);
delete @ENV{grep { /^(?:TAVRN_|DISPLAY$|WAYLAND_DISPLAY$)/ } keys %ENV};
$ENV{TAVRN_DIR} = "$root/installation";

# Runs a command; gives its status and all that it wrote.
sub said {
	my ($status, $out, $err) = run(@_);
	return ($status, $out . $err);
}

# ---------------------------------------------------------------- the form

# Widgets of the form: {kind, line, children, KEY => VALUE, CONTENTS => [LINE...]}.
my @lines = map { s/^\s+|\s+$//gr } split /\n/, get("$root/installation/mray/tavrn.def") =~ s/\A.*^roe \{\n//msr;
my %block = map { $_ => 1 } qw(help choosercontents), map { "${_}optioncontents" } '', qw(x y z);

sub widget {
	my ($kind) = @_;
	my %widget = (kind => $kind, children => []);
	while (defined(my $line = shift @lines)) {
		next if $line eq '' || $line =~ /^#/;
		last if $line eq '}';
		my ($key, $value) = $line =~ /^(\S+)\s*(.*)$/;
		if ($block{$key}) {
			push @{ $widget{$key} }, shift @lines while $lines[0] ne '}';
			shift @lines;
		} elsif ($key eq '{') {
			%widget = (%widget, %{ widget('layout') }{qw(vertical horizontal)});
		} elsif ($value eq '{') {
			push @{ $widget{children} }, widget($key);
		} else {
			$widget{$key} = $value =~ s/^"(.*)"$/$1/r;
		}
	}
	return \%widget;
}

sub all_of { map { ($_, all_of(@{ $_->{children} })) } @_ }

my $form = widget('roe');
my @widgets = all_of(@{ $form->{children} });
my %kinds = map { my $kind = $_; $kind => [grep { $_->{kind} eq $kind } @widgets] } map { $_->{kind} } @widgets;

# Option => {value, lines}; the lines are those of the chooser, or the words of the presets.
my %options;
for my $widget (@widgets) {
	for my $axis (grep { exists $widget->{"${_}envname"} } '', qw(x y z)) {
		my $presets = $widget->{"${axis}optioncontents"};
		my $value = $widget->{"${axis}value"} // $widget->{state} // '';
		$value .= '.0' if exists $widget->{forcefloat} && $value =~ /^\d+$/;
		$options{ $widget->{"${axis}envname"} } = {
			value => $value,
			lines => $widget->{choosercontents} // ($presets ? [map { /^(\S+)/ } @$presets] : []),
			kind => $widget->{kind},
			unsaved => exists $widget->{notavrnsave},
		};
	}
}

subtest 'the form is in good order' => sub {
	cmp_ok(scalar keys %options, '>', 10, 'it has its options');
	is(join(' ', sort keys %kinds), 'button chooser frame label ledbutton okfield stringinput xfield xyfield xyzfield',
		'all kinds of widget have an example');
	for my $field (map { @{ $kinds{$_} } } qw(xfield xyfield xyzfield stringinput)) {
		my $name = $field->{optionlabel} // $field->{headinglabel} // $field->{label} // '';
		like($name, qr/^\w.{2,20}$/, 'a field has a name');
		cmp_ok(length "@{ $field->{help} // [] }", '>', 60, "$name has a help text");
	}
	for my $name (grep { @{ $options{$_}{lines} } } sort keys %options) {
		my ($value, @lines) = ($options{$name}{value}, @{ $options{$name}{lines} });
		ok((grep { $_ eq $value || $_ eq $value =~ s/\.0$//r } @lines), "the default of $name is one of its lines");
		my %seen;
		is(join(' ', grep { $seen{$_}++ } @lines), '', 'which are all different');
	}
	my ($grid) = grep { defined $_->{vertical} && $_->{vertical} == 3 } @{ $kinds{frame} };
	my @kinds = map { $_->{kind} } @{ $grid->{children} };
	my $rows = @kinds / 3;
	is("@kinds[0 .. 2 * $rows - 1]", join(' ', ('label') x $rows, ('chooser') x $rows),
		'each chooser stands beside its label');
	is(scalar(grep { ($_->{resize} // '') ne 'false' } @{ $kinds{label} }, @{ $kinds{chooser} }), 0,
		'and columns have straight edges');
	is(scalar(grep { ($_->{height} // 0) < 28 } @{ $kinds{label} }), 0, 'and rows have room');
	my ($last) = map { $_->{children}[-1] } $form->{children}[-1];
	is($last->{kind}, 'okfield', 'the form ends with Default and OK');
};

subtest 'the texts tell the options' => sub {
	my $module = get("$root/installation/mray/bin/MrayOptions.pm");
	my ($table) = $module =~ /^my %defaults = \((.*?)^\);/ms;
	my %known = $table =~ /^\s+(MRAY_\w+)\s+=> '(.*)',$/mg;
	is(join(' ', sort keys %known), join(' ', grep { /^MRAY_/ } sort keys %options),
		'those of the form are those of the scripts');
	is($known{$_}, $options{$_}{value} =~ s/\.0$//r, "with the same default of $_") for sort keys %known;
	my %told = map { $_ => 1 } map { /`(\w+)`/g } get("$root/docs/library.md") =~ /^\| (`(?:MRAY|TAVRN)_.*?) \|/mg;
	is(join(' ', grep { !$told{$_} } sort keys %options), '', 'and are told in the manual');
};

subtest 'documents have the options that are not for the moment' => sub {
	my ($status, $said) = said($batch, '--save', "$dir/new.tvn");
	is("$status$said", 0, 'a document is saved without a message');
	my %saved = get("$dir/new.tvn") =~ /^    setenv (\w+) "(.*)"\r$/mg;
	is_deeply(\%saved, { map { $_ => $options{$_}{value} } grep { !$options{$_}{unsaved} } keys %options },
		'with the defaults of the form');
};

# ---------------------------------------------------------------- the pictures

# Renders one of the examples once for each set of options; each picture's text, and what was said.
sub pictures {
	my ($example, @sets) = @_;
	my @words = map { ((map { ('--set', $_) } 'MRAY_SIZE=40,30', 'MRAY_SAMPLES=1', @$_), '--render') } @sets;
	my ($status, $said) = said($batch, @words, '--keep-work', "$dir/kept", "$root/examples/$example.tvn");
	is($status, 0, 'all are rendered') or diag $said;
	return ($said, map { get("$dir/kept/$_/$example.png") } 1 .. @sets);
}

# Each value of an option has a picture of its own.
sub differ {
	my ($option, $example, @values) = @_;
	my ($said, @pictures) = pictures($example, map { ["$option=$_"] } @values);
	my %shows;
	push @{ $shows{ $pictures[$_] } }, $values[$_] for 0 .. $#values;
	is(join('; ', map { "@$_" } grep { @$_ > 1 } values %shows), '', "no two values of $option look alike");
	is(scalar(grep { !/^\x89PNG/ } @pictures), 0, 'and all are pictures');
}

for my $name (sort keys %options) {
	next if $name eq 'MRAY_SIZE' || $name eq 'TAVRN_SHADER_TYPE' || !@{ $options{$name}{lines} };
	subtest $name => sub { differ($name, 'copper', @{ $options{$name}{lines} }) };
}

subtest 'MRAY_SIZE' => sub {
	my ($said, @pictures) = pictures('copper', ['MRAY_SIZE=24,50'], ['MRAY_SIZE=50,24']);
	is(join(' ', map { join ',', unpack 'N2', substr $_, 16, 8 } @pictures), '24,50 50,24', 'is the size of the picture');
	for my $line (@{ $options{MRAY_SIZE}{lines} }) {
		my ($width, $height) = $line =~ /^(\d+),(\d+)$/;
		ok($width && $height && $width * $height <= 1920 * 1080, "$line can be waited for");
	}
};

subtest 'MRAY_TIMES' => sub {
	my ($said) = pictures('copper', ['MRAY_TIMES=0']);
	unlike($said, qr/^total .* ms$/m, 'no times');
	($said) = pictures('copper', ['MRAY_TIMES=1']);
	like($said, qr/^total .* ms$/m, 'times');
};

subtest 'a view of a module' => sub {
	my ($said, @pictures) = pictures('lava', ['MRAY_VIEW=shaded'], ['MRAY_VIEW=clay'],
		['MRAY_VIEW=shaded', 'MRAY_TINT_R=0.5']);
	my %seen = map { $_ => 1 } @pictures;
	is(scalar keys %seen, 3, 'is one of the shader that calls it');
};

subtest 'a view shows its one thing, whatever the shader' => sub {
	my @scene = qw(MRAY_OBJECT=torus MRAY_BACKGROUND=dark MRAY_LIGHT=rim MRAY_EXPOSURE=1);
	my @views = map { ["MRAY_VIEW=$_", @scene] } qw(clay normals coordinates);
	my (undef, @copper) = pictures('copper', @views);
	my (undef, @wood) = pictures('wood', @views);
	is(scalar(grep { $copper[$_] ne $wood[$_] } 0 .. $#views), 0, 'clay, normals and coordinates are those of the object');
};

done_testing;
